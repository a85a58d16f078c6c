// Sample assemblies with some of their bytes changed. Whatever the verifier still accepts runs within its
// stated cost, and gives, number for number, what the plain evaluator gives, all finite.
//
// The first byte chooses the sample; then each edit has two bytes for the place and one for the new value.
#include "embedded/compiler/Compiler.h"
#include "embedded/engine/PlainEvaluator.h"
#include "embedded/engine/Plan.h"
#include "embedded/engine/Schedule.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Cost.h"
#include "embedded/program/Package.h"
#include "embedded/program/ProgramFacts.h"
#include "embedded/program/Verifier.h"
#include "fuzzers/SmallRender.h"
#include "tests/embedded/engine/ProgramBuilder.h"
#include "tests/embedded/engine/Rendering.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
#include <optional>

namespace {

using namespace fuzzing;
using namespace embedded;

Bytes assemblyOf(const std::filesystem::path& source) {
    std::ifstream file(source, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const CompileResult compiled = compilePackage(text);
    const auto package = decodePackage(compiled.package.data(), compiled.package.size());
    require(package.has_value(), "samples compile");
    return package->assembly;
}

// By name, so that an input means the same on every machine.
const std::vector<Bytes>& samples() {
    static const std::vector<Bytes> assemblies = [] {
        std::vector<std::filesystem::path> sources;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(KVSUBSTANCE_SAMPLE_SOURCES))
            if (entry.path().extension() == ".xml") sources.push_back(entry.path());
        std::sort(sources.begin(), sources.end(),
                  [](const auto& a, const auto& b) { return a.stem() < b.stem(); });
        std::vector<Bytes> made;
        std::transform(sources.begin(), sources.end(), std::back_inserter(made), assemblyOf);
        return made;
    }();
    return assemblies;
}

Bytes editedSample(Choices& choices) {
    Bytes bytes = samples().at(choices.below(static_cast<unsigned>(samples().size())));
    while (!choices.empty()) {
        const std::size_t place = choices.raw<std::uint16_t>() % bytes.size();
        bytes[place] = static_cast<unsigned char>(choices.byte());
    }
    return bytes;
}

InputValues smallValues(const Program& program) {
    InputValues inputs = defaultValues(program);
    const std::vector<bool> isSize = sizeInputs(program);
    for (std::size_t i = 0; i < program.inputs.size(); ++i)
        if (isSize[i]) inputs.values[i].integers = smallSize(program.inputs[i].type);
    return inputs;
}

void checkCost(const Program& program, const std::vector<std::size_t>& outputs, const InputValues& inputs) {
    const ProgramCost cost = costOf(program, outputs, smallLog2Width, smallLog2Height);
    const Plan plan = makePlan(program, outputs, inputs);
    const Schedule schedule = makeSchedule(plan, {[](const ImageKey&) { return nullptr; }, {}});
    RenderedTextures rendered;
    const Statistics run = evaluate(program, outputs, inputs, plainWorkshop(), rendered);
    require(run.nodesRun <= cost.nodes + cost.repeats + cost.conversions, "no more nodes run than was said");
    require(run.pixelsComputed <= cost.computedPixels, "no more pixels are computed than was said");
    require(run.mostBytesHeld <= schedule.peakBytes, "no more bytes are held than was planned");
    require(rendered.textures.size() == outputs.size(), "every output is rendered");
    for (const auto& [output, texture] : rendered.textures)
        require(texture.finished, "a texture is finished");
}

// The plain evaluator computes a node once for each path that leads to it.
double plainRuns(const Program& program, std::size_t node) {
    std::vector<double> runs;
    for (std::size_t i = 0; i <= node; ++i) {
        runs.push_back(1);
        for (const std::int32_t source : program.nodes[i].sources)
            if (source != ProgramNode::unconnected) runs[i] += runs[static_cast<std::size_t>(source)];
    }
    return runs[node];
}

void comparePlainly(Program program, std::size_t output, const InputValues& inputs) {
    constexpr double mostRuns = 300;
    constexpr int floatColour = 67;
    constexpr int floatGray = 68;
    const std::int32_t node = program.outputs.at(output).node;
    if (plainRuns(program, static_cast<std::size_t>(node)) > mostRuns) return;
    const Image expected = evaluatePlainly(program, static_cast<std::size_t>(node), inputs);
    program.outputs = {{1, node, expected.channels() == 1 ? floatGray : floatColour, 1}};
    RenderedTextures rendered;
    evaluate(program, {0}, inputs, plainWorkshop(), rendered);
    require(sameNumbers(imageOf(rendered.textures.at(0), expected.channels()), expected),
            "all evaluations give the same finite numbers");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices choices(data, size);
    const Bytes bytes = editedSample(choices);
    const std::optional<Program> program = decodeAssembly(bytes.data(), bytes.size());
    if (!program) return 0;
    require(verify(*program).empty(), "what is read holds to the rules");
    std::vector<std::size_t> outputs(program->outputs.size());
    std::iota(outputs.begin(), outputs.end(), std::size_t{0});
    if (!isCheap(*program)) return 0;
    const InputValues inputs = smallValues(*program);
    checkCost(*program, outputs, inputs);
    if (!outputs.empty()) comparePlainly(*program, size % outputs.size(), inputs);
    return 0;
}
