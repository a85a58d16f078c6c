# Fails when REFERENCE is not what "TOOL nodes", run by EMULATOR if there is one, prints.
execute_process(COMMAND ${EMULATOR} ${TOOL} nodes OUTPUT_VARIABLE printed COMMAND_ERROR_IS_FATAL ANY)
file(READ ${REFERENCE} written)
if(NOT printed STREQUAL written)
    message(FATAL_ERROR "docs/nodes.md is out of date; write it anew: kvsubstance nodes >docs/nodes.md")
endif()
