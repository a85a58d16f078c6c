# The C++ runtime of mingw-w64. Strings, containers and exceptions cross the boundaries of the libraries, so that
# all of them, and the host, use one runtime: three DLLs, which lie beside the programs. KVSUBSTANCE_RUNTIME_LIBRARIES
# are the files.
include_guard()

set(KVSUBSTANCE_RUNTIME_LIBRARIES)
foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name} OUTPUT_VARIABLE file
                    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    list(APPEND KVSUBSTANCE_RUNTIME_LIBRARIES ${file})
    file(COPY ${file} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
endforeach()
