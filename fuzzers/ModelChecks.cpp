#include "fuzzers/ModelChecks.h"

#include "bridge/ComboItems.h"
#include "fuzzers/Fuzzing.h"

namespace fuzzing {

using namespace kvSubstance;

void readInputs(Substance& material) {
    unsigned seen = 0;
    for (const kvString::CString& identifier : material.getInputIds()) {
        SubstanceInput* const input = material.getInput(identifier);
        require(input != nullptr, "listed inputs are found");
        for (int k = 0; k < (input->getType() & 7); ++k) {
            for (const int number : {input->getValueI(k), input->getDefaultI(k), input->getMinI(k),
                                     input->getMaxI(k), input->getStepI(k)})
                seen += static_cast<unsigned>(number);
            seen += static_cast<unsigned>(input->getUniqueLabel(k).asMultibyte().length());
            seen += static_cast<unsigned>(input->getIndexIdentifier(k).length());
        }
        require(input->isDefaultValue() || !input->isDefaultValue(), "asking changes nothing");
        require(!input->isCombo() || input->getType() == TypeInt1, "combo boxes are for single integers");
        for (const kvString::IString& item : input->getComboItem())
            seen += static_cast<unsigned>(item.asMultibyte().length());
    }
    readAll(&seen, sizeof seen);
}

void checkStateString(Substance& material) {
    material.applyStateString(material.getStateString());
    const kvString::CString first = material.getStateString();
    material.applyStateString(first);
    require(material.getStateString() == first, "a state string is its own after it was applied");
}

} // namespace fuzzing
