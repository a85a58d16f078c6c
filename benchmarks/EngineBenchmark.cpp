// How fast the embedded engine is: single nodes, the yardstick graphs, and the sample materials, in full and
// after edits. The floor of all of them is a fixed arithmetic loop, which a core of 3.6 GHz runs in 4.7 ms.
// On one thread the processor's time is measured, on two the wall clock's.
//
//     engine_benchmarks                                    all of it, as a table
//     engine_benchmarks --benchmark_filter="2 threads"     a part
//     engine_benchmarks --rows=FILE                        appends the rows to a file for benchmark_table
#include "benchmarks/Comparison.h"
#include "embedded/compiler/Compiler.h"
#include "embedded/engine/Evaluator.h"
#include "embedded/engine/PlainEvaluator.h"
#include "embedded/engine/Plan.h"
#include "embedded/engine/TextureEncoding.h"
#include "embedded/engine/WorkerPool.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/NodeKind.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"
#include "embedded/rows/InstructionSet.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace embedded;
using benchmarks::Clock;
using benchmarks::Piece;

[[noreturn]] void stop(const std::string& reason) {
    std::fprintf(stderr, "engine_benchmarks: %s\n", reason.c_str());
    std::exit(1);
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) stop(path.string() + " cannot be read");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

Program compiled(const std::string& source) {
    const CompileResult result = compilePackage(source);
    const auto package = decodePackage(result.package.data(), result.package.size());
    if (!package) stop("a source does not compile");
    return *decodeAssembly(package->assembly.data(), package->assembly.size());
}

// Textures whose memory is used again, as a host does that frees each one soon.
class ReusedTextures : public TextureReceiver {
public:
    unsigned char* begin(std::size_t output, const TextureShape& shape) override {
        auto& bytes = textures_[output];
        bytes.resize(textureBytes(shape.width, shape.height, shape.format, shape.levels));
        return bytes.data();
    }
    void finish(std::size_t) override {}

private:
    std::map<std::size_t, std::vector<unsigned char>> textures_;
};

// A program with the values of its inputs, all of its outputs wanted.
class Scene {
public:
    Scene(Program sceneProgram, int log2Side, unsigned threads, bool keepsImages)
        : program(std::move(sceneProgram))
        , inputs(defaultValues(program))
        , pool_(threads)
        , outputs_(program.outputs.size()) {
        std::iota(outputs_.begin(), outputs_.end(), std::size_t{0});
        for (std::size_t i = 0; i < program.inputs.size(); ++i) {
            if (program.inputs[i].role == SystemInput::Resolution)
                inputs.values[i].integers = {log2Side, log2Side, 0, 0};
        }
        workshop_.runner = [this](int rows, int rowSamples, const RowFunction& function) {
            pool_.run(rows, rowSamples, function);
        };
        workshop_.budget = std::uint64_t{512} << 20;
        workshop_.memory = std::make_shared<ImageMemory>(workshop_.budget);
        if (keepsImages) workshop_.cache = std::make_shared<ImageCache>();
    }

    void render() { evaluate(program, outputs_, inputs, workshop_, textures_); }

    // Pictures of noise for all image inputs.
    void givePictures(int side) {
        for (std::size_t i = 0; i < program.inputs.size(); ++i) {
            if (program.inputs[i].type != ValueType::Image) continue;
            auto image = std::make_shared<Image>(side, side, i % 2 ? 1 : 3);
            std::uint32_t bits = 1;
            for (std::size_t s = 0; s < image->sampleCount(); ++s) {
                bits = bits * 1664525u + 1013904223u;
                image->row(0)[s] = static_cast<float>(bits >> 8) / 16777216.0f;
            }
            inputs.images[i] = std::move(image);
        }
    }

    Program program;
    InputValues inputs;

private:
    WorkerPool pool_;
    std::vector<std::size_t> outputs_;
    Workshop workshop_;
    ReusedTextures textures_;
};

enum class Edit { None, Colour, Seed };

// Which input an edit changes: the last one that drives a float parameter, as hues and tints do, or the seed.
std::size_t editedInput(const Program& program, Edit edit) {
    std::size_t found = program.inputs.size();
    for (std::size_t i = 0; i < program.inputs.size(); ++i) {
        const ProgramInput& input = program.inputs[i];
        const bool isColour = input.type == ValueType::Float3 || input.type == ValueType::Float4;
        if (edit == Edit::Seed ? input.role == SystemInput::Seed : isColour) found = i;
    }
    for (std::size_t i = 0; found == program.inputs.size() && i < program.inputs.size(); ++i)
        if (program.inputs[i].type == ValueType::Float) found = i;
    return found;
}

int log2Of(int side) {
    int log2 = 0;
    while (1 << log2 < side) ++log2;
    return log2;
}

Piece renderScene(const Program& program, int side, unsigned threads, Edit edit) {
    const auto scene = std::make_shared<Scene>(program, log2Of(side), threads, edit != Edit::None);
    scene->givePictures(side);
    const std::size_t input = editedInput(program, edit);
    scene->render();
    return {[scene, edit, input, turn = 0]() mutable {
                if (edit != Edit::None) {
                    Value& value = scene->inputs.values[input];
                    ++turn; // never a value that was there before
                    value.integers[0] = turn;
                    value.floats[0] = 0.1f + 1e-4f * static_cast<float>(turn);
                }
                scene->render();
            },
            {}};
}

using Parameters = std::map<std::string, std::vector<double>>;

// One node at the end of a program, over a gray and a coloured source.
Program nodeProgram(const NodeKind& kind, bool colour, int side, const Parameters& parameters) {
    Program program;
    Value size;
    size.type = ValueType::Integer2;
    size.integers = {log2Of(side), log2Of(side), 0, 0};
    const auto addNode = [&](const NodeKind& added) -> ProgramNode& {
        ProgramNode& node = program.nodes.emplace_back();
        node.kind = added.code;
        node.resolution.constant = size;
        node.seed.constant.type = ValueType::Integer;
        node.sources.assign(added.ports.size(), ProgramNode::unconnected);
        for (const ParameterInfo& info : added.parameters) {
            Binding& binding = node.parameters.emplace_back();
            binding.constant.type = info.type;
            const auto found = parameters.find(info.name);
            for (std::size_t c = 0; c < 4; ++c) {
                const bool given = &added == &kind && found != parameters.end();
                const double number =
                    !given ? info.defaultValue[c] : found->second[std::min(c, found->second.size() - 1)];
                binding.constant.integers[c] = isInteger(info.type) ? static_cast<std::int32_t>(number) : 0;
                binding.constant.floats[c] = isInteger(info.type) ? 0.0f : static_cast<float>(number);
            }
        }
        return node;
    };
    addNode(*findNodeKind("fbm"));
    addNode(*findNodeKind("gradientMap")).sources[0] = 0;
    ProgramNode& node = addNode(kind);
    for (std::size_t i = 0; i < kind.ports.size(); ++i) {
        const bool isGray = kind.ports[i].channels == PortChannels::Gray;
        node.sources[i] = isGray || !colour ? 0 : 1;
    }
    for (std::size_t i = 0; i < kind.parameters.size(); ++i)
        if (std::string_view(kind.parameters[i].name) == "colour" &&
            kind.parameters[i].type == ValueType::Integer)
            node.parameters[i].constant.integers[0] = colour ? 1 : 0;
    program.outputs = {{1, 2, 0, 0}};
    return program;
}

// Runs the last node of such a program over sources that are there.
class NodeRun {
public:
    NodeRun(const Program& program, unsigned threads)
        : plan_(makePlan(program, {0}, defaultValues(program)))
        , pool_(threads)
        , images_(plan_.nodes.size()) {
        for (std::size_t i = 0; i < plan_.showings[0].node; ++i) images_[i] = run(i);
    }

    void runLast() { benchmark::DoNotOptimize(run(plan_.showings[0].node)); }

private:
    std::shared_ptr<const Image> run(std::size_t index) {
        const auto runner = [this](int rows, int rowSamples, const RowFunction& function) {
            pool_.run(rows, rowSamples, function);
        };
        return runGroup(plan_, {index, true, {}, {}, {}}, images_, {}, memory_, runner, defaultSegmentLength,
                        work_);
    }

    Plan plan_;
    std::shared_ptr<ImageMemory> memory_ = std::make_shared<ImageMemory>(std::size_t{1} << 30);
    WorkerPool pool_;
    std::vector<std::shared_ptr<const Image>> images_;
    GroupWork work_;
};

Piece runNode(const Program& program, unsigned threads) {
    return {[run = std::make_shared<NodeRun>(program, threads)] { run->runLast(); }, {}};
}

Piece runPlainly(const Program& program) {
    return {[program] { benchmark::DoNotOptimize(evaluatePlainly(program, 2, defaultValues(program))); }, {}};
}

// Four million whole-number steps that depend on each other.
Piece arithmeticLoop(int) {
    return {[] {
                std::uint32_t x = 1;
                for (int i = 0; i < 4 << 20; ++i) x = x * 1664525u + 1013904223u;
                benchmark::DoNotOptimize(x);
            },
            {}};
}

Piece copyMemory(int mebibytes) {
    const std::size_t size = static_cast<std::size_t>(mebibytes) << 20;
    return {[from = std::vector<char>(size, 1), to = std::vector<char>(size)]() mutable {
                std::memcpy(to.data(), from.data(), from.size());
                benchmark::DoNotOptimize(to.data());
                benchmark::ClobberMemory();
            },
            {}};
}

// Targets hold at AVX-512. They were set in milliseconds on a machine that runs the loop in so many.
constexpr double LoopMilliseconds = 4.7;

double targetOf(double milliseconds) {
    return instructionSet() == InstructionSet::Avx512 ? milliseconds / LoopMilliseconds : 0;
}

void add(const std::string& name, const std::vector<int>& sides, unsigned threads,
         const std::function<Piece(int)>& work, double targetMilliseconds = 0) {
    benchmarks::Comparison comparison;
    comparison.name = name + (threads == 1 ? ", 1 thread" : ", " + std::to_string(threads) + " threads");
    comparison.unit = "px";
    comparison.sizes = sides;
    comparison.work = work;
    comparison.floor = arithmeticLoop;
    comparison.target = targetOf(targetMilliseconds);
    comparison.clock = threads == 1 ? Clock::Processor : Clock::Wall;
    comparison.rounds = targetMilliseconds > 0 ? 15 : 7;
    benchmarks::add(comparison);
}

void addYardsticks(unsigned threads) {
    const auto isTarget = [threads](double milliseconds) { return threads == 1 ? milliseconds : 0; };
    const auto addNode = [&](const char* name, const char* kind, bool colour, const Parameters& parameters,
                             double target) {
        add(
            name, {2048}, threads,
            [=](int side) {
                return runNode(nodeProgram(*findNodeKind(kind), colour, side, parameters), threads);
            },
            isTarget(target));
    };
    addNode("fbm of 6 octaves", "fbm", false, {}, 36);
    addNode("cellular F1", "cellular", false, {}, 22);
    addNode("blur of colour", "blur", true, {{"sigma", {20.0 / 2048}}}, 45);
    const std::filesystem::path folder = KVSUBSTANCE_BENCHMARK_SOURCES;
    const Program chain = compiled(readFile(folder / "pointwise_chain.xml"));
    const Program graph = compiled(readFile(folder / "material_graph.xml"));
    const auto addScene = [&](const char* name, const Program& program, Edit edit, double target) {
        add(
            name, {2048}, threads, [=](int side) { return renderScene(program, side, threads, edit); },
            isTarget(target));
    };
    addScene("pointwise chain", chain, Edit::None, 25);
    addScene("material graph", graph, Edit::None, 140);
    addScene("material graph, hue edited", graph, Edit::Colour, 18);
    addScene("material graph, seed edited", graph, Edit::Seed, 0);
}

void addSamples(unsigned threads) {
    std::vector<std::filesystem::path> sources;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(KVSUBSTANCE_SAMPLE_SOURCES))
        if (entry.path().extension() == ".xml") sources.push_back(entry.path());
    std::sort(sources.begin(), sources.end());
    for (const auto& source : sources) {
        const Program sample = compiled(readFile(source));
        const auto addScene = [&](const char* edited, const std::vector<int>& sides, Edit edit) {
            add(source.stem().string() + edited, sides, threads,
                [=](int side) { return renderScene(sample, side, threads, edit); });
        };
        addScene("", {1024, 2048}, Edit::None);
        addScene(", colour edited", {1024}, Edit::Colour);
        addScene(", seed edited", {1024}, Edit::Seed);
    }
}

void addNodes() {
    for (const NodeKind& kind : nodeKinds()) {
        for (const bool colour : {false, true}) {
            if (colour && kind.result == ResultChannels::Gray) continue;
            const std::string name = std::string(kind.name) + (colour ? " of colour" : " of gray");
            add(name, {1024}, 1,
                [=, &kind](int side) { return runNode(nodeProgram(kind, colour, side, {}), 1); });
            add(name + ", plain path with sources", {1024}, 1,
                [=, &kind](int side) { return runPlainly(nodeProgram(kind, colour, side, {})); });
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    const std::string rowsFile = benchmarks::takeRowsFile(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    std::fprintf(stderr, "instruction set: %s\n", nameOf(instructionSet()));
    benchmarks::Comparison copy{"copy of memory", "MiB", {64}, copyMemory, arithmeticLoop};
    benchmarks::add(copy);
    for (const unsigned threads : {1u, 2u}) {
        addYardsticks(threads);
        addSamples(threads);
    }
    addNodes();
    return benchmarks::runAll(rowsFile);
}
