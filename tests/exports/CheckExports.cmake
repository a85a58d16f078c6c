# Fails when what LIBRARY exports, as LISTER and DEMANGLER print it, is not what INTERFACE lists.
execute_process(COMMAND ${LISTER} ${LIBRARY} COMMAND ${DEMANGLER} OUTPUT_VARIABLE listing
                COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "\t\\[ *([0-9]+)\\] ([^+])" "\\1 T \\2" listing "${listing}") # a DLL's table of names
string(REGEX REPLACE "[][]" "" listing "${listing}") # would end CMake's lists
string(REPLACE "\n" ";" lines "${listing}")

set(exported)
foreach(line IN LISTS lines)
    if(line MATCHES "^[0-9a-f]+ [A-Za-z] (.*)")
        list(APPEND exported "${CMAKE_MATCH_1}")
    endif()
endforeach()
list(REMOVE_DUPLICATES exported) # variants of constructors and destructors
list(FILTER exported EXCLUDE REGEX "^typeinfo name for ") # data that only ELF shares
file(STRINGS ${INTERFACE} expected REGEX "^[^#]")

set(strangers ${exported})
list(REMOVE_ITEM strangers ${expected})
set(missing ${expected})
list(REMOVE_ITEM missing ${exported})
if(strangers OR missing)
    list(JOIN strangers "\n  " strangers)
    list(JOIN missing "\n  " missing)
    message(FATAL_ERROR "Exported, but not of the interface:\n  ${strangers}\nOf the interface, but not exported:\n  ${missing}")
endif()
