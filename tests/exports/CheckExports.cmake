# Fails when the shared library LIBRARY exports a symbol that is not of the public interface, or lacks one of it.
execute_process(COMMAND ${NM} --dynamic --defined-only --demangle ${LIBRARY} OUTPUT_VARIABLE listing
                COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "\n$" "" listing "${listing}")
string(REPLACE "\n" ";" lines "${listing}")

set(classes "(Substance|SubstanceEntity|SubstanceInput|SubstanceOutput|SubstanceReader)")
set(functions "(createSubstance|readSubstanceContent|readSubstanceContentAsChar|getTextureFromSubstance|syncValueFromSubstanceInputToInputInstanceBase)")
set(strangers)
foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[0-9a-f]+ [A-Za-z] " "" symbol "${line}")
    if(NOT symbol MATCHES "^((vtable|typeinfo|typeinfo name) for )?kvSubstance::(${classes}$|${classes}::|${functions}\\()")
        string(APPEND strangers "\n  ${symbol}")
    endif()
endforeach()
if(strangers)
    message(FATAL_ERROR "Exported, but not of the interface:${strangers}")
endif()

foreach(name "Substance::applyStateString(" "SubstanceInput::setValueF(" "SubstanceOutput::SubstanceOutput("
             "SubstanceReader::readFromXMLData(" "SubstanceEntity::onModified(" "createSubstance(std"
             "createSubstance(SubstanceAir" "readSubstanceContent(" "readSubstanceContentAsChar("
             "getTextureFromSubstance(" "syncValueFromSubstanceInputToInputInstanceBase(")
    string(FIND "${listing}" "kvSubstance::${name}" place)
    if(place EQUAL -1)
        message(FATAL_ERROR "Not exported: kvSubstance::${name}")
    endif()
endforeach()
