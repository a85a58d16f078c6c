# What a host's developer gets by "cmake --install": the shared libraries with their import libraries, the shipped
# headers, and the package kvSubstance for find_package, with the targets kvSubstance::kvsubstance, kvSubstance::base
# and kvSubstance::image. The tree can be moved.
include_guard()
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/kvSubstance)
set_target_properties(kvsubstance_platform PROPERTIES EXPORT_NAME platform)
set_target_properties(kvbase PROPERTIES EXPORT_NAME base)
set_target_properties(kvimage PROPERTIES EXPORT_NAME image)
install(TARGETS kvsubstance kvbase kvimage kvsubstance_platform EXPORT kvSubstanceTargets)
install(EXPORT kvSubstanceTargets NAMESPACE kvSubstance:: DESTINATION ${package_folder})
if(NOT WIN32)
    # The libraries find each other wherever they are.
    set_target_properties(kvsubstance PROPERTIES INSTALL_RPATH $ORIGIN)
endif()

file(STRINGS ${PROJECT_SOURCE_DIR}/cmake/internal-headers.txt internal_headers)
foreach(folder platform material bridge)
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/${folder}/*.h)
    list(REMOVE_ITEM headers ${internal_headers})
    foreach(header IN LISTS headers)
        cmake_path(GET header PARENT_PATH header_folder)
        install(FILES ${header} DESTINATION ${KVSUBSTANCE_INSTALL_INCLUDES}/${header_folder})
    endforeach()
endforeach()

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/kvSubstanceConfig.cmake.in
    ${PROJECT_BINARY_DIR}/kvSubstanceConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kvSubstanceConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kvSubstanceConfig.cmake ${PROJECT_BINARY_DIR}/kvSubstanceConfigVersion.cmake
        DESTINATION ${package_folder})

if(KVSUBSTANCE_BUILD_TOOLS)
    install(TARGETS kvsubstance_tool)
    if(NOT WIN32)
        file(RELATIVE_PATH libraries_from_tool /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
        set_target_properties(kvsubstance_tool PROPERTIES INSTALL_RPATH $ORIGIN/${libraries_from_tool})
    endif()
endif()
install(FILES ${KVSUBSTANCE_RUNTIME_LIBRARIES} DESTINATION ${CMAKE_INSTALL_BINDIR})
