# How every target of the project is compiled, and where things are put.
include_guard()
include(GNUInstallDirs)

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
set(KVSUBSTANCE_INSTALL_INCLUDES ${CMAKE_INSTALL_INCLUDEDIR}/kvsubstance)
if(WIN32)
    set(CMAKE_SHARED_LIBRARY_PREFIX "") # kvsubstance.dll
endif()
if(MINGW)
    include(windows/runtime)
endif()
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()

# Settings that every target of ours links.
add_library(kvsubstance_settings INTERFACE)
target_include_directories(kvsubstance_settings INTERFACE ${PROJECT_SOURCE_DIR})
if(WIN32)
    target_compile_definitions(kvsubstance_settings INTERFACE NOMINMAX WIN32_LEAN_AND_MEAN) # for windows.h
endif()
if(MSVC)
    # Not about members of exported classes: all libraries and the host use one C++ runtime.
    target_compile_options(kvsubstance_settings INTERFACE /W4 /wd4251 /wd4275 /utf-8 /permissive-
                           $<$<BOOL:${KVSUBSTANCE_WARNINGS_AS_ERRORS}>:/WX>)
else()
    target_compile_options(kvsubstance_settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                           $<$<BOOL:${KVSUBSTANCE_WARNINGS_AS_ERRORS}>:-Werror>)
endif()
if(KVSUBSTANCE_SANITIZERS)
    target_compile_options(kvsubstance_settings INTERFACE -fsanitize=${KVSUBSTANCE_SANITIZERS}
                           -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(kvsubstance_settings INTERFACE -fsanitize=${KVSUBSTANCE_SANITIZERS})
endif()
