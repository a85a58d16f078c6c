// How fast the embedded engine is: single nodes, the yardstick graphs, and the sample materials, in full and
// after edits. All times stand beside those of a fixed arithmetic loop and of a copy of memory, measured in
// the same run, since times alone drift with the machine.
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

void render(benchmark::State& state, const Program& program, int log2Side, unsigned threads, Edit edit) {
    Scene scene(program, log2Side, threads, edit != Edit::None);
    scene.givePictures(1 << log2Side);
    const std::size_t input = editedInput(program, edit);
    scene.render();
    int turn = 0;
    for (auto _ : state) {
        if (edit != Edit::None) {
            Value& value = scene.inputs.values[input];
            ++turn; // never a value that was there before
            value.integers[0] = turn;
            value.floats[0] = 0.1f + 1e-4f * static_cast<float>(turn);
        }
        scene.render();
    }
}

// One node at the end of a program, over sources that are there.
void runNode(benchmark::State& state, const NodeKind& kind, bool colour, int log2Side, unsigned threads,
             const std::map<std::string, std::vector<double>>& parameters, bool plain) {
    Program program;
    Value size;
    size.type = ValueType::Integer2;
    size.integers = {log2Side, log2Side, 0, 0};
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

    if (plain) {
        for (auto _ : state) benchmark::DoNotOptimize(evaluatePlainly(program, 2, defaultValues(program)));
        return;
    }
    const Plan plan = makePlan(program, {0}, defaultValues(program));
    const auto memory = std::make_shared<ImageMemory>(std::size_t{1} << 30);
    WorkerPool pool(threads);
    const auto runner = [&](int rows, int rowSamples, const RowFunction& function) {
        pool.run(rows, rowSamples, function);
    };
    std::vector<std::shared_ptr<const Image>> images(plan.nodes.size());
    const std::size_t last = plan.showings[0].node;
    GroupWork work;
    const auto run = [&](std::size_t index) {
        return runGroup(plan, {index, true, {}, {}, {}}, images, {}, memory, runner, defaultSegmentLength,
                        work);
    };
    for (std::size_t i = 0; i < last; ++i) images[i] = run(i);
    for (auto _ : state) benchmark::DoNotOptimize(run(last));
}

// Four million whole-number steps that depend on each other.
void arithmeticLoop(benchmark::State& state) {
    for (auto _ : state) {
        std::uint32_t x = 1;
        for (int i = 0; i < 4 << 20; ++i) x = x * 1664525u + 1013904223u;
        benchmark::DoNotOptimize(x);
    }
}

void copyMemory(benchmark::State& state) {
    std::vector<char> from(std::size_t{64} << 20, 1);
    std::vector<char> to(from.size());
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size());
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
}

// Targets in milliseconds at AVX-512, where there is one.
const std::map<std::string, double> targets = {
    {"2048/fbm of 6 octaves/1 thread", 36}, {"2048/cellular F1/1 thread", 22},
    {"2048/blur of colour/1 thread", 45},   {"2048/pointwise chain/1 thread", 25},
    {"2048/material graph/1 thread", 140},  {"2048/material graph, hue edited/1 thread", 18},
};

std::string onThreads(const std::string& name, unsigned threads) {
    return name + "/" + std::to_string(threads) + (threads == 1 ? " thread" : " threads");
}

template <typename Function>
void add(const std::string& name, Function function) {
    benchmark::RegisterBenchmark(name.c_str(), function)->Unit(benchmark::kMillisecond)->UseRealTime();
}

void addAll() {
    add("arithmetic loop", arithmeticLoop);
    add("copy of 64 MiB", copyMemory);
    for (const unsigned threads : {1u, 2u}) {
        const auto addNode = [&](const std::string& name, const char* kind, bool colour,
                                 const std::map<std::string, std::vector<double>>& parameters) {
            add(onThreads("2048/" + name, threads), [=](benchmark::State& state) {
                runNode(state, *findNodeKind(kind), colour, 11, threads, parameters, false);
            });
        };
        addNode("fbm of 6 octaves", "fbm", false, {});
        addNode("cellular F1", "cellular", false, {});
        addNode("blur of colour", "blur", true, {{"sigma", {20.0 / 2048}}});
        const std::filesystem::path folder = KVSUBSTANCE_BENCHMARK_SOURCES;
        const Program chain = compiled(readFile(folder / "pointwise_chain.xml"));
        const Program graph = compiled(readFile(folder / "material_graph.xml"));
        const auto addScene = [&](const std::string& name, const Program& program, int log2Side, Edit edit) {
            const std::string side = std::to_string(1 << log2Side);
            add(onThreads(side + "/" + name, threads),
                [=](benchmark::State& state) { render(state, program, log2Side, threads, edit); });
        };
        addScene("pointwise chain", chain, 11, Edit::None);
        addScene("material graph", graph, 11, Edit::None);
        addScene("material graph, hue edited", graph, 11, Edit::Colour);
        addScene("material graph, seed edited", graph, 11, Edit::Seed);
        std::vector<std::filesystem::path> sources;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(KVSUBSTANCE_SAMPLE_SOURCES))
            if (entry.path().extension() == ".xml") sources.push_back(entry.path());
        std::sort(sources.begin(), sources.end());
        for (const auto& source : sources) {
            const Program sample = compiled(readFile(source));
            const std::string name = source.stem().string();
            addScene(name, sample, 10, Edit::None);
            addScene(name + ", colour edited", sample, 10, Edit::Colour);
            addScene(name + ", seed edited", sample, 10, Edit::Seed);
            addScene(name, sample, 11, Edit::None);
        }
    }
    for (const NodeKind& kind : nodeKinds()) {
        for (const bool colour : {false, true}) {
            if (colour && kind.result == ResultChannels::Gray) continue;
            const std::string name = std::string("1024/") + kind.name + (colour ? " colour" : "");
            for (const bool plain : {false, true})
                add(name + (plain ? ", plain path with sources" : ""),
                    [&kind, colour, plain](benchmark::State& state) {
                        runNode(state, kind, colour, 10, 1, {}, plain);
                    });
        }
    }
}

// Medians beside those of the arithmetic loop and the copy, the spread of the repetitions, and the targets.
class Table : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override {
        std::printf("instruction set: %s\n\n%-58s %10s %8s %8s %8s %8s\n", nameOf(instructionSet()), "work",
                    "median ms", "spread", "/loop", "/copy", "target");
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        std::vector<double> times;
        std::string name;
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
            times.push_back(run.GetAdjustedRealTime());
            name = run.run_name.function_name;
        }
        if (times.empty()) return;
        std::sort(times.begin(), times.end());
        const double median = times[times.size() / 2];
        if (name == "arithmetic loop") loop_ = median;
        if (name == "copy of 64 MiB") copy_ = median;
        const auto target = targets.find(name);
        std::printf("%-58s %10.2f %7.0f%% %8.2f %8.2f", name.c_str(), median,
                    100 * (times.back() - times.front()) / median, median / loop_, median / copy_);
        if (target != targets.end())
            std::printf(" %8.0f%s", target->second, median > target->second ? " missed" : "");
        std::printf("\n");
        std::fflush(stdout);
    }

private:
    double loop_ = NAN;
    double copy_ = NAN;
};

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    addAll();
    Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return 0;
}
