// Sample assemblies with some of their bytes changed. Whatever the verifier still accepts runs within its
// stated cost, and gives, number for number, what the plain evaluator gives, all finite.
//
// The first byte chooses the sample; then each edit has two bytes for the place and one for the new value.
#include "embedded/program/Assembly.h"
#include "embedded/program/Cost.h"
#include "fuzzers/SmallRender.h"
#include "tests/embedded/engine/Rendering.h"
#include "tests/embedded/samples/Samples.h"

#include <iterator>

namespace {

using namespace fuzzing;
using namespace embedded;

void checkCost(const Program& program, const InputValues& inputs) {
    const std::vector<std::size_t> outputs = allOutputs(program);
    const ProgramCost cost = costOf(program, outputs, smallLog2Width, smallLog2Height);
    RenderedTextures rendered;
    const Statistics run = evaluate(program, outputs, inputs, plainWorkshop(), rendered);
    require(run.nodesRun <= cost.nodes + cost.repeats + cost.conversions, "no more nodes run than was said");
    require(run.pixelsComputed <= cost.computedPixels, "no more pixels are computed than was said");
}

// The plain evaluator computes a node once for each path that leads to it.
bool isQuickPlainly(const Program& program, std::size_t node) {
    constexpr double mostRuns = 300;
    std::vector<double> runs(node + 1, 1);
    for (std::size_t i = 0; i <= node; ++i)
        for (const std::int32_t source : program.nodes[i].sources)
            if (source != ProgramNode::unconnected) runs[i] += runs[static_cast<std::size_t>(source)];
    return runs[node] <= mostRuns;
}

void comparePlainly(Program program, const ProgramOutput& output, const InputValues& inputs) {
    constexpr int floatColour = 67;
    constexpr int floatGray = 68;
    const auto node = static_cast<std::size_t>(output.node);
    if (!isQuickPlainly(program, node)) return;
    const Image expected = evaluatePlainly(program, node, inputs);
    program.outputs = {{1, output.node, expected.channels() == 1 ? floatGray : floatColour, 1}};
    RenderedTextures rendered;
    evaluate(program, {0}, inputs, plainWorkshop(), rendered);
    require(sameNumbers(imageOf(rendered.textures.at(0), expected.channels()), expected),
            "all evaluations give the same finite numbers");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto samples = sampleAssemblies();
    Choices choices(data, size);
    fuzzing::Bytes bytes = std::next(samples.begin(), choices.below(samples.size()))->second;
    while (!choices.empty()) {
        const std::size_t place = choices.raw<std::uint16_t>() % bytes.size();
        bytes[place] = static_cast<unsigned char>(choices.byte());
    }
    const std::optional<Program> program = decodeAssembly(bytes.data(), bytes.size());
    if (!program || !isCheap(*program)) return 0;
    InputValues inputs = defaultValues(*program);
    for (const auto& [input, small] : smallSizes(*program)) inputs.values[input].integers = small;
    checkCost(*program, inputs);
    if (!program->outputs.empty())
        comparePlainly(*program, program->outputs[size % program->outputs.size()], inputs);
    return 0;
}
