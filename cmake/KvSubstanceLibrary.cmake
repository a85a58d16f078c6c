# The library itself, in two forms made of the same objects. The static core leaves the linker's and the
# engine's C functions open, so that whoever links it chooses them.
include_guard()

set(kvsubstance_parts kvsubstance_support kvsubstance_description kvsubstance_render kvsubstance_material
    kvsubstance_bridge)

add_library(kvsubstance_core STATIC)
add_library(kvSubstance::core ALIAS kvsubstance_core)
target_compile_definitions(kvsubstance_core INTERFACE KVSUBSTANCE_STATIC)
target_link_libraries(kvsubstance_core PUBLIC kvsubstance_settings kvsubstance_platform
    ${KVSUBSTANCE_BASE_LIBRARY} ${KVSUBSTANCE_IMAGE_LIBRARY} Boost::thread Threads::Threads TinyXML::TinyXML)

add_library(kvsubstance SHARED)
add_library(kvSubstance::kvsubstance ALIAS kvsubstance)
set_target_properties(kvsubstance PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${KVSUBSTANCE_SOVERSION})
target_link_libraries(kvsubstance
    PUBLIC kvsubstance_platform ${KVSUBSTANCE_BASE_LIBRARY} ${KVSUBSTANCE_IMAGE_LIBRARY} Boost::headers
    PRIVATE kvsubstance_settings ${KVSUBSTANCE_LINKER_LIBRARY} ${KVSUBSTANCE_ENGINE_LIBRARY} Boost::thread
            Threads::Threads TinyXML::TinyXML)
foreach(part IN LISTS kvsubstance_parts)
    target_sources(kvsubstance_core PRIVATE $<TARGET_OBJECTS:${part}>)
    target_sources(kvsubstance PRIVATE $<TARGET_OBJECTS:${part}>)
endforeach()
set_target_properties(kvsubstance_core kvsubstance PROPERTIES LINKER_LANGUAGE CXX)

# Hidden visibility does not reach what the standard library's templates leave behind in our objects.
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    set(exports ${PROJECT_SOURCE_DIR}/cmake/kvsubstance.map)
    target_link_options(kvsubstance PRIVATE LINKER:--version-script=${exports})
    set_target_properties(kvsubstance PROPERTIES LINK_DEPENDS ${exports})
endif()
