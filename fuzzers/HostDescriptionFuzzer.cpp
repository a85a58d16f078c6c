// Any text as a host-side description. What is read of it is a material whose inputs can be edited, reset and
// written out, through whatever dependencies between its entities; nothing else comes of it.
#include "fuzzers/Fuzzing.h"
#include "fuzzers/MemoryPeak.h"
#include "fuzzers/ModelChecks.h"

#include <string>

namespace {

using namespace fuzzing;
using namespace kvSubstance;

// One is enough: rings of entities that alter each other are told up to a million times for each edit.
void editFirst(Substance& material) {
    for (const kvString::CString& identifier : material.getInputIds()) {
        SubstanceInput* const input = material.getInput(identifier);
        if ((input->getType() & 7) == 0) continue;
        input->setValueI(0x40000000, 0); // 2.0 as a float
        return require(input->isModified() && material.isModified(), "an edit shows");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = textOf(data, size);
    kv::Reference<Substance> material;
    {
        const MemoryPeak peak;
        material = SubstanceReader::getInstance().readFromXMLData(text.c_str());
        requireLoadingBound(peak, text.size());
    }
    if (!material) return 0;
    require(!material->isModified(), "a new material is unmodified");
    readInputs(*material);
    editFirst(*material);
    material->clearModified();
    constexpr int fewInputs = 2;
    if (material->numInputs() > fewInputs) return 0;
    checkStateString(*material);
    material->reset();
    return 0;
}
