# Fails when an object of one instruction set defines a symbol that the linker could use for another: one that
# neither is local nor names the set.
list(LENGTH OBJECTS count)
if(count EQUAL 0)
    message(FATAL_ERROR "no objects were given")
endif()
foreach(object IN LISTS OBJECTS)
    execute_process(COMMAND ${NM} --defined-only --extern-only --format=just-symbols ${object}
                    OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "[^\n]+" symbols "${output}")
    foreach(symbol IN LISTS symbols)
        if(NOT symbol MATCHES "(rows|arithmetic)_${SET}" AND NOT symbol MATCHES "^__|^DW\\.ref")
            message(SEND_ERROR "${object} defines ${symbol}, which other instruction sets could come to use")
        endif()
    endforeach()
endforeach()
