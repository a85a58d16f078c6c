// Any text as a package's description. Loading it takes no more memory than is promised, what comes of it is
// sorted and refers to itself only, and it can be copied, stacked on itself and on a plain graph,
// instantiated, and made into the inputs of a material. Behind a zero byte stand the loading options.
#include "bridge/InputCreation.h"
#include "framework/description/PackageDesc.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/PackageStackDesc.h"
#include "fuzzers/Fuzzing.h"
#include "fuzzers/MemoryPeak.h"
#include "fuzzers/ModelChecks.h"
#include "fuzzers/RendererReset.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace fuzzing;
using namespace SubstanceAir;

using GraphInstances = std::vector<boost::shared_ptr<GraphInstance>>;

const char* const plainDescription =
    "<sbsdescription asmuid='7'><graphs count='1'><graph pkgurl='pkg:/plain' label='Plain'><outputs>"
    "<output uid='1' identifier='diffuse'/><output uid='2' identifier='height'/></outputs><inputs>"
    "<input uid='3' identifier='$resolution' type='8' default='8,8' alteroutputs='1,2'/>"
    "<input uid='4' identifier='$seed' type='4' alteroutputs='1,2'/>"
    "<input uid='5' identifier='scale' type='0' default='2' alteroutputs='1'/>"
    "<input uid='6' identifier='diffuse' type='5' alteroutputs='1'/>"
    "</inputs></graph></graphs></sbsdescription>";

PackageDesc& plainPackage() {
    static PackageDesc* const made =
        new PackageDesc(plainDescription, std::strlen(plainDescription), nullptr);
    return *made;
}

template <class Uids>
bool isAscending(const Uids& uids) {
    return std::is_sorted(uids.begin(), uids.end());
}

void checkGraph(const GraphDesc& graph) {
    require(!graph.outputs.empty(), "a graph has outputs");
    require(std::is_sorted(graph.outputs.begin(), graph.outputs.end(),
                           [](const OutputDesc& a, const OutputDesc& b) { return a.uid < b.uid; }),
            "outputs are sorted");
    require(std::is_sorted(graph.inputs.begin(), graph.inputs.end(),
                           [](const auto& a, const auto& b) { return a->uid < b->uid; }),
            "inputs are sorted");
    for (const OutputDesc& output : graph.outputs) {
        require(isAscending(output.alteringInputUids), "altering inputs are sorted");
        for (const unsigned int uid : output.alteringInputUids)
            require(findInput(graph.inputs, uid) != nullptr, "outputs name inputs of their graph");
    }
    for (const auto& input : graph.inputs) {
        require(isAscending(input->alteredOutputUids), "altered outputs are sorted");
        for (const unsigned int uid : input->alteredOutputUids)
            require(findOutput(graph.outputs, uid) != graph.outputs.end(),
                    "inputs name outputs of their graph");
    }
}

void editByPresets(const GraphDesc& graph, GraphInstance& instance) {
    for (const Preset& preset : graph.presets) {
        for (const PresetInputValue& value : preset.inputValues) {
            auto* const input =
                dynamic_cast<InputInstanceNumericalBase*>(instance.findInput(value.identifier));
            if (!input || !input->setValueFromText(value.value)) continue;
            input->setValueFromText(input->valueAsText());
        }
    }
}

void checkMaterial(GraphInstances& instances) {
    const kv::Reference<kvSubstance::Substance> material(new kvSubstance::Substance);
    material->getGraphInstances().swap(instances);
    for (const auto& graph : material->getGraphInstances()) {
        for (const auto& input : graph->inputs) kvSubstance::createInput(*material, *input);
        material->setPackageURL(graph->desc.packageUrl.c_str());
    }
    readInputs(*material);
    checkStateString(*material);
    material->reset();
}

void checkStack(const GraphDesc& bottom, const GraphDesc& top, unsigned int bottomOutputs) {
    const PackageStackDesc stack(bottom, top, {{}, bottomOutputs});
    require(stack.graphs().size() == 1, "a stack has one graph");
    const GraphDesc& graph = stack.graphs().front();
    for (const auto& [output, input] : stack.connections())
        require(findOutput(bottom.outputs, output) != bottom.outputs.end() && findInput(top.inputs, input),
                "connections are between what exists");
    for (const auto& [first, second] : stack.fusedInputs())
        require(findInput(bottom.inputs, first) && findInput(top.inputs, second), "fused inputs exist");
    GraphInstances instances;
    instantiateGraphs(instances, stack);
    require(instances.size() == 1 && instances.front()->outputs.size() == graph.outputs.size(),
            "an instance has the outputs of its graph");
    checkMaterial(instances);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices choices(data, size);
    const std::string text = choices.textUpTo('\0');
    const GraphDesc& plain = plainPackage().graphs().front();
    OutputFormatOptions options{AllFormatClasses, 0};
    if (!choices.empty()) options = {choices.byte(), choices.below(3)};
    std::optional<PackageDesc> package;
    {
        const MemoryPeak peak;
        package.emplace(text.data(), text.size(), &options);
        requireLoadingBound(peak, text.size());
    }
    for (const GraphDesc& graph : package->graphs()) {
        checkGraph(graph);
        const GraphDesc copy(graph);
        require(copy.inputs.size() == graph.inputs.size() && !copy.parent, "a copy has no parent");
        GraphInstance instance(graph);
        editByPresets(graph, instance);
        if (!graph.parent) continue; // more graphs than announced
        checkStack(plain, graph, choices.below(2));
        checkStack(graph, plain, choices.below(2));
        checkStack(graph, graph, choices.below(2));
    }
    return 0;
}
