# How every target of the project is compiled.
include_guard()

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()

# Settings that every target of ours links.
add_library(kvsubstance_settings INTERFACE)
target_include_directories(kvsubstance_settings INTERFACE ${PROJECT_SOURCE_DIR})
if(MSVC)
    target_compile_options(kvsubstance_settings INTERFACE /W4 /utf-8 $<$<BOOL:${KVSUBSTANCE_WARNINGS_AS_ERRORS}>:/WX>)
else()
    target_compile_options(kvsubstance_settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                           $<$<BOOL:${KVSUBSTANCE_WARNINGS_AS_ERRORS}>:-Werror>)
endif()
if(KVSUBSTANCE_SANITIZERS)
    target_compile_options(kvsubstance_settings INTERFACE -fsanitize=${KVSUBSTANCE_SANITIZERS}
                           -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(kvsubstance_settings INTERFACE -fsanitize=${KVSUBSTANCE_SANITIZERS})
endif()
