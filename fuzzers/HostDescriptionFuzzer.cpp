// Any text as a host-side description. What is read of it is a material whose inputs can be edited, reset and
// written out, through whatever dependencies between its entities; nothing else comes of it.
#include "fuzzers/Model.h"

#include <algorithm>

using namespace fuzzing;
using namespace kvSubstance;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto material = SubstanceReader::getInstance().readFromXMLData(Choices(data, size).text().c_str());
    if (!material) return 0;
    require(!material->isModified(), "a new material is unmodified");
    readInputs(*material);

    // One edit is enough: rings of entities that alter each other are told up to a million times for each.
    const auto& ids = material->getInputIds();
    const auto first = std::find_if(ids.begin(), ids.end(), [&](const auto& identifier) {
        return (material->getInput(identifier)->getType() & 7) != 0;
    });
    if (first != ids.end()) {
        const kv::Reference<SubstanceInput> input(material->getInput(*first));
        input->setValueI(0x40000000, 0);                           // 2.0 as a float
        if (!input->isModified()) input->setValueI(0x40400000, 0); // it was 2.0 already
        require(input->isModified() && material->isModified(), "an edit shows");
    }
    material->clearModified();
    constexpr int fewInputs = 2;
    if (material->numInputs() > fewInputs) return 0;
    checkStateString(*material);
    material->reset();
    return 0;
}
