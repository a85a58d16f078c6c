// Any text as a state string, applied to a material with an input of every type. Texts for other packages
// change nothing; what the material writes afterwards it takes back unchanged, and the engine's side holds
// the same values.
#include "bridge/InputCreation.h"
#include "framework/description/GraphDesc.h"
#include "framework/render/GraphInstance.h"
#include "fuzzers/Fuzzing.h"
#include "fuzzers/ModelChecks.h"

#include <boost/make_shared.hpp>

#include <cmath>
#include <memory>
#include <string>

namespace {

using namespace fuzzing;
using namespace kvSubstance;
namespace Math = SubstanceAir::Math;

const std::string header = "pkg:/a\n";

template <class T>
void addInput(SubstanceAir::GraphDesc& graph, unsigned int uid, unsigned int type) {
    auto input = std::make_unique<SubstanceAir::InputDescNumerical<T>>();
    input->uid = uid;
    input->type = type;
    input->identifier = "i" + std::to_string(uid);
    graph.inputs.push_back(std::move(input));
}

const SubstanceAir::GraphDesc& everyType() {
    static const auto* const graph = [] {
        auto* const made = new SubstanceAir::GraphDesc;
        addInput<float>(*made, 1, SubstanceAir::Float);
        addInput<Math::Vector2<float>>(*made, 2, SubstanceAir::Float2);
        addInput<Math::Vector3<float>>(*made, 3, SubstanceAir::Float3);
        addInput<Math::Vector4<float>>(*made, 4, SubstanceAir::Float4);
        addInput<int>(*made, 5, SubstanceAir::Integer);
        addInput<Math::Vector2<int>>(*made, 6, SubstanceAir::Integer2);
        addInput<Math::Vector3<int>>(*made, 7, SubstanceAir::Integer3);
        addInput<Math::Vector4<int>>(*made, 8, SubstanceAir::Integer4);
        return made;
    }();
    return *graph;
}

kv::Reference<Substance> makeMaterial() {
    kv::Reference<Substance> material(new Substance);
    const auto graph = boost::make_shared<SubstanceAir::GraphInstance>(everyType());
    material->getGraphInstances().push_back(graph);
    for (const auto& input : graph->inputs) createInput(*material, *input);
    material->setPackageURL(std::string(header, 0, header.size() - 1).c_str());
    material->newOutput(9, "output", Format0, 1, 1, 1, false);
    return material;
}

void checkEngineSide(Substance& material) {
    for (const auto& instance : material.getGraphInstances().front()->inputs) {
        const SubstanceInput& input = *material.getInput(instance->desc.identifier.c_str());
        for (int k = 0; k < (input.getType() & 7); ++k) {
            const auto* const components = static_cast<const unsigned char*>(instance->rawData());
            bool isEqual = false;
            if (input.getType() & 0x20) {
                int stored = 0;
                std::memcpy(&stored, components + sizeof stored * static_cast<std::size_t>(k), sizeof stored);
                isEqual = stored == input.getValueI(k);
            } else {
                float stored = 0;
                std::memcpy(&stored, components + sizeof stored * static_cast<std::size_t>(k), sizeof stored);
                const float value = input.getValueF(k);
                isEqual = stored == value || (std::isnan(stored) && std::isnan(value));
            }
            require(isEqual, "the engine's side holds the value");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = textOf(data, size);
    const kv::Reference<Substance> material = makeMaterial();
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
