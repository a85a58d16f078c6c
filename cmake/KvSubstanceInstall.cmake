# What "cmake --install" gives, in a tree that can be moved:
#
#   component Runtime      the shared libraries
#   component Development  headers, import and static libraries, the CMake package, the pkg-config file
#   component Tool         the command, its manual page and its completion
#   component Samples      compiled sample materials
#
# The package kvSubstance has parts of its own, which find_package names as its COMPONENTS (kvSubstanceConfig.cmake.in).
# Those of the embedded libraries are there when the project was built with them.
include_guard()
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/kvSubstance)
set(data_folder ${CMAKE_INSTALL_DATADIR}/kvsubstance)

# kvsubstance_install_part(PART TARGETS...), each target written FROM=NAME: kvSubstance::NAME is what others link.
function(kvsubstance_install_part part)
    set(targets)
    foreach(pair IN LISTS ARGN)
        string(REGEX MATCH "^(.*)=(.*)$" pair ${pair})
        set_target_properties(${CMAKE_MATCH_1} PROPERTIES EXPORT_NAME ${CMAKE_MATCH_2})
        list(APPEND targets ${CMAKE_MATCH_1})
    endforeach()
    install(TARGETS ${targets} EXPORT kvSubstance_${part}
            RUNTIME COMPONENT Runtime
            LIBRARY COMPONENT Runtime NAMELINK_COMPONENT Development
            ARCHIVE COMPONENT Development)
    install(EXPORT kvSubstance_${part} NAMESPACE kvSubstance:: DESTINATION ${package_folder} COMPONENT Development)
endfunction()

kvsubstance_install_part(platform kvsubstance_platform=platform kvsubstance_settings=settings)
kvsubstance_install_part(shared kvsubstance=kvsubstance)
kvsubstance_install_part(core kvsubstance_core=core)
if(KVSUBSTANCE_BASE_LIBRARY STREQUAL "kvSubstance::base")
    kvsubstance_install_part(base kvbase=base)
endif()
if(KVSUBSTANCE_IMAGE_LIBRARY STREQUAL "kvSubstance::image")
    kvsubstance_install_part(image kvimage=image)
endif()
kvsubstance_install_part(embedded kvengine=engine kvlinker=linker kvprogram=engine_program kvnodes=engine_nodes
    kvrows=engine_rows kvenginestatistics=engine_statistics)
kvsubstance_install_part(conformance kvconformance=conformance)
if(NOT WIN32)
    # The libraries find each other wherever they are.
    set_target_properties(kvsubstance PROPERTIES INSTALL_RPATH $ORIGIN)
endif()

file(STRINGS ${PROJECT_SOURCE_DIR}/cmake/internal-headers.txt internal_headers)
foreach(folder platform material bridge conformance)
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/${folder}/*.h)
    list(REMOVE_ITEM headers ${internal_headers})
    foreach(header IN LISTS headers)
        cmake_path(GET header PARENT_PATH header_folder)
        install(FILES ${header} DESTINATION ${KVSUBSTANCE_INSTALL_INCLUDES}/${header_folder} COMPONENT Development)
    endforeach()
endforeach()

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/kvSubstanceConfig.cmake.in
    ${PROJECT_BINARY_DIR}/kvSubstanceConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kvSubstanceConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kvSubstanceConfig.cmake ${PROJECT_BINARY_DIR}/kvSubstanceConfigVersion.cmake
        ${PROJECT_SOURCE_DIR}/cmake/FindTinyXML.cmake DESTINATION ${package_folder} COMPONENT Development)

# For builds that do not use CMake.
file(RELATIVE_PATH prefix_from_package_file /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${PROJECT_SOURCE_DIR}/cmake/kvsubstance.pc.in ${PROJECT_BINARY_DIR}/kvsubstance.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kvsubstance.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT Development)

file(RELATIVE_PATH libraries_from_programs /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
function(kvsubstance_install_program target component)
    install(TARGETS ${target} COMPONENT ${component})
    if(NOT WIN32)
        set_target_properties(${target} PROPERTIES INSTALL_RPATH $ORIGIN/${libraries_from_programs})
    endif()
endfunction()
kvsubstance_install_program(kvsubstance_conformance Development)
if(KVSUBSTANCE_BUILD_TOOLS)
    kvsubstance_install_program(kvsubstance_tool Tool)
    install(FILES ${sample_packages} DESTINATION ${data_folder}/samples COMPONENT Samples)
    if(NOT WIN32)
        install(FILES ${PROJECT_BINARY_DIR}/tools/kvsubstance.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
                COMPONENT Tool)
        install(FILES ${PROJECT_BINARY_DIR}/tools/kvsubstance.bash RENAME kvsubstance
                DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT Tool)
    endif()
endif()
install(FILES ${KVSUBSTANCE_RUNTIME_LIBRARIES} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${data_folder} COMPONENT Development)
