// Any text as a state string, applied to a material with an input of every type. Texts for other packages
// change nothing; what the material writes afterwards it takes back unchanged, and the engine's side holds
// the same values.
#include "fuzzers/Model.h"

#include <boost/make_shared.hpp>

#include <cmath>

namespace {

using namespace fuzzing;
using namespace kvSubstance;

void checkEngineSide(Substance& material) {
    for (const auto& instance : material.getGraphInstances().front()->inputs) {
        const SubstanceInput& input = *material.getInput(instance->desc.identifier.c_str());
        const bool isInteger = (input.getType() & 0x20) != 0;
        for (int k = 0; k < (input.getType() & 7); ++k) {
            const void* const stored = static_cast<const char*>(instance->rawData()) + sizeof(int) * k;
            int integer = 0;
            float number = 0;
            std::memcpy(&integer, stored, sizeof integer);
            std::memcpy(&number, stored, sizeof number);
            const float value = input.getValueF(k);
            require(isInteger ? integer == input.getValueI(k)
                              : number == value || (std::isnan(number) && std::isnan(value)),
                    "the engine's side holds the value");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto* const graph = new SubstanceAir::GraphDesc(graphOfAllTypes());
    const std::string header = graph->packageUrl + "\n";
    const std::string text = Choices(data, size).text();
    const auto material = materialOf(boost::make_shared<SubstanceAir::GraphInstance>(*graph));
    const kvString::CString before = material->getStateString();
    material->applyStateString(text.c_str());
    const bool isForeign = (text + '\n').compare(0, header.size(), header) != 0;
    require(!isForeign || material->getStateString() == before, "a foreign text changes nothing");
    checkEngineSide(*material);
    checkStateString(*material);
    checkEngineSide(*material);
    material->reset();
    for (const kvString::CString& identifier : material->getInputIds())
        require(material->getInput(identifier)->isDefaultValue(), "defaults come back"); // or the other zero
    return 0;
}
