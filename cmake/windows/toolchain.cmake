# Builds for 64-bit Windows with Debian's mingw-w64: the compiler with POSIX threads, because the sources use
# std::thread and std::mutex. Libraries come from build/windows-dependencies and from the compiler's own folders,
# never from the building machine's.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libz.a OUTPUT_VARIABLE compiler_libraries
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
cmake_path(SET compiler_root NORMALIZE "${compiler_libraries}/../..")
cmake_path(SET dependencies NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../../build/windows-dependencies/installed")
list(APPEND CMAKE_FIND_ROOT_PATH ${dependencies} ${compiler_root}) # behind what the command line names
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ZLIB_USE_STATIC_LIBS ON)
set(Boost_USE_STATIC_LIBS ON)
set(Boost_NO_WARN_NEW_VERSIONS ON)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine.sh)
