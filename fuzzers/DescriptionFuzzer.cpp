// Any text as a package's description. What comes of it is sorted and refers to itself only, and it can be
// copied, stacked on itself and on a plain graph, instantiated, and made into the inputs of a material.
// Behind a zero byte stand the loading options.
#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"
#include "framework/description/PackageDesc.h"
#include "framework/render/PackageStackDesc.h"
#include "fuzzers/Model.h"
#include "tests/embedded/program/SamplePrograms.h"

namespace {

using namespace fuzzing;
using namespace SubstanceAir;

const char* const plainDescription =
    "<sbsdescription asmuid='7'><graphs count='1'><graph pkgurl='pkg:/plain' label='Plain'><outputs>"
    "<output uid='1' identifier='diffuse'/><output uid='2' identifier='height'/></outputs><inputs>"
    "<input uid='3' identifier='$resolution' type='8' default='8,8' alteroutputs='1,2'/>"
    "<input uid='4' identifier='$seed' type='4' alteroutputs='1,2'/>"
    "<input uid='6' identifier='diffuse' type='5' alteroutputs='1'/>"
    "</inputs></graph></graphs></sbsdescription>";

Bytes packageOf(const std::string& description) {
    static const Bytes assembly = embedded::encodeAssembly(embedded::sampleProgram());
    return embedded::encodePackage({description, assembly});
}

const GraphDesc& plainGraph() {
    static const auto* const package = [] {
        const Bytes bytes = packageOf(plainDescription);
        return new PackageDesc(bytes.data(), bytes.size(), nullptr);
    }();
    return package->graphs().front();
}

bool hasOutput(const GraphDesc& graph, unsigned int uid) {
    return findOutput(graph.outputs, uid) != graph.outputs.end();
}

// Ascending, and each of a port that exists.
template <class Exists>
void checkUids(const std::vector<unsigned int>& uids, Exists exists) {
    require(std::is_sorted(uids.begin(), uids.end()), "uids are sorted");
    require(std::all_of(uids.begin(), uids.end(), exists), "ports act on ports of their graph");
}

void checkGraph(const GraphDesc& graph) {
    require(!graph.outputs.empty(), "a graph has outputs");
    std::vector<unsigned int> outputs;
    std::vector<unsigned int> inputs;
    for (const OutputDesc& output : graph.outputs) {
        outputs.push_back(output.uid);
        checkUids(output.alteringInputUids, [&](unsigned int uid) { return findInput(graph.inputs, uid); });
    }
    for (const auto& input : graph.inputs) {
        inputs.push_back(input->uid);
        checkUids(input->alteredOutputUids, [&](unsigned int uid) { return hasOutput(graph, uid); });
    }
    require(std::is_sorted(outputs.begin(), outputs.end()), "outputs are sorted");
    require(std::is_sorted(inputs.begin(), inputs.end()), "inputs are sorted");
}

void checkStack(const GraphDesc& bottom, const GraphDesc& top, unsigned int bottomOutputs) {
    const PackageStackDesc stack(bottom, top, {{}, bottomOutputs});
    require(stack.graphs().size() == 1, "a stack has one graph");
    for (const auto& [output, input] : stack.connections())
        require(hasOutput(bottom, output) && findInput(top.inputs, input), "connected ports exist");
    for (const auto& [first, second] : stack.fusedInputs())
        require(findInput(bottom.inputs, first) && findInput(top.inputs, second), "fused inputs exist");
    std::vector<boost::shared_ptr<GraphInstance>> instances;
    instantiateGraphs(instances, stack);
    require(instances.size() == 1 && instances[0]->outputs.size() == stack.graphs()[0].outputs.size(),
            "an instance has the outputs of its graph");
    const auto material = materialOf(instances[0]);
    readInputs(*material);
    checkStateString(*material);
    material->reset();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices choices(data, size);
    const GraphDesc& plain = plainGraph();
    const Bytes bytes = packageOf(choices.text());
    OutputFormatOptions options{AllFormatClasses, 0};
    if (!choices.empty()) options = {choices.byte(), choices.below(3)};
    const PackageDesc package(bytes.data(), bytes.size(), &options);
    for (const GraphDesc& graph : package.graphs()) {
        checkGraph(graph);
        const GraphDesc copy(graph);
        require(copy.inputs.size() == graph.inputs.size() && !copy.parent, "a copy has no parent");
        GraphInstance instance(graph);
        for (const Preset& preset : graph.presets)
            for (const PresetInputValue& value : preset.inputValues)
                tryValue(instance, value.identifier, value.value);
        if (!graph.parent) continue; // more graphs than announced
        checkStack(plain, graph, choices.below(2));
        checkStack(graph, plain, choices.below(2));
        checkStack(graph, graph, choices.below(2));
    }
    return 0;
}
