// The scheduled evaluation against the plain one, byte for byte, with row bands of random sizes in shuffled
// order.
#include "embedded/engine/Evaluator.h"
#include "embedded/engine/PlainEvaluator.h"
#include "embedded/engine/Schedule.h"
#include "embedded/nodes/Arithmetic.h"
#include "embedded/program/Verifier.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <numeric>
#include <random>
#include <sstream>

using namespace embedded;

namespace {

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

class ShuffledBands {
public:
    explicit ShuffledBands(unsigned seed)
        : random_(seed) {}

    void operator()(int rows, int, const RowFunction& function) {
        std::vector<std::pair<int, int>> bands;
        for (int row = 0; row < rows;) {
            const int end = std::min(rows, row + 1 + static_cast<int>(random_() % 7));
            bands.emplace_back(row, end);
            row = end;
        }
        std::shuffle(bands.begin(), bands.end(), random_);
        for (const auto& [begin, end] : bands) function(begin, end);
    }

private:
    std::mt19937 random_;
};

// Empty when both images are the same and every sample is a number; else what is wrong.
std::string differenceOf(const Image& image, const Image& expected) {
    if (!image.sameSize(expected) || image.channels() != expected.channels()) return "shape";
    for (std::size_t i = 0; i < image.sampleCount(); ++i)
        if (!std::isfinite(expected.row(0)[i])) return "not finite at " + std::to_string(i);
    const bool same = std::memcmp(image.row(0), expected.row(0), image.sampleCount() * sizeof(float)) == 0;
    return same ? "" : "samples";
}

// Every output of the program both ways.
void compareAll(const Program& program, const InputValues& inputs, unsigned seed, const std::string& name) {
    ASSERT_TRUE(verify(program).empty()) << name;
    std::vector<std::size_t> outputs(program.outputs.size());
    std::iota(outputs.begin(), outputs.end(), std::size_t{0});
    std::size_t received = 0;
    evaluate(program, outputs, inputs, unlimited, ShuffledBands(seed),
             [&](std::size_t output, const Image& image) {
                 const auto node = static_cast<std::size_t>(program.outputs[output].node);
                 EXPECT_EQ(differenceOf(image, evaluatePlainly(program, node, inputs)), "")
                     << name << ", output " << output;
                 ++received;
             });
    EXPECT_EQ(received, outputs.size()) << name;
}

// A node of the kind with sources from the choices and its parameters drawn from their ranges.
std::int32_t addRandomNode(ProgramBuilder& builder, const NodeKind& kind,
                           const std::vector<std::int32_t>& choices, std::mt19937& random) {
    std::vector<std::int32_t> sources;
    for (const PortInfo& port : kind.ports) {
        const bool connected = port.required || random() % 2 == 0;
        sources.push_back(connected ? choices[random() % choices.size()] : ProgramNode::unconnected);
    }
    ProgramBuilder::Parameters parameters;
    for (const ParameterInfo& parameter : kind.parameters) {
        if (parameter.type == ValueType::Image || random() % 3 == 0) continue;
        std::vector<double> numbers(4);
        for (double& number : numbers) {
            const double share = random() / 4294967295.0;
            // Mostly small numbers of the range, where the interesting ones are.
            number = parameter.minimum + (parameter.maximum - parameter.minimum) * share * share * share;
        }
        parameters[parameter.name] = numbers;
    }
    return builder.node(kind.name, sources, parameters);
}

TEST(Evaluator, equalsPlainEvaluationForEveryKindAndAwkwardSizes) {
    const std::pair<int, int> sizes[] = {{0, 0}, {0, 5}, {5, 0}, {1, 1}, {6, 3}, {4, 7}};
    std::mt19937 random(1);
    for (const NodeKind& kind : nodeKinds()) {
        for (const auto& [width, height] : sizes) {
            for (int variant = 0; variant < 4; ++variant) {
                ProgramBuilder builder(5, 4); // other than the node's: sources are resampled
                const auto image = builder.input(1, ValueType::Image);
                const auto gray = builder.node("fbm");
                const auto cells = builder.node("cellular", {}, {{"result", {3}}});
                const auto colour = builder.node("gradientMap", {cells}, {{"colour1", {0.9, 0.2, 0.1, 0.5}}});
                builder.setSize(width, height);
                const auto node = addRandomNode(builder, kind, {gray, colour}, random);
                if (std::string(kind.name) == "imageInput") builder.bind(node, "image", image);
                builder.output(1, node);
                InputValues inputs = defaultValues(builder.program);
                if (variant % 2 == 0)
                    inputs.images[0] = std::make_shared<const Image>(
                        evaluatePlainly(builder.program, static_cast<std::size_t>(colour), inputs));
                const std::string name = std::string(kind.name) + " " + std::to_string(width) + "," +
                                         std::to_string(height) + " variant " + std::to_string(variant);
                compareAll(builder.program, inputs, static_cast<unsigned>(variant), name);
            }
        }
    }
}

TEST(Evaluator, equalsPlainEvaluationForRandomGraphs) {
    for (unsigned seed = 0; seed < 30; ++seed) {
        std::mt19937 random(seed);
        ProgramBuilder builder(4, 5);
        std::vector<std::int32_t> nodes = {builder.node("fbm"),
                                           builder.node("uniform", {}, {{"colour", {1}}})};
        for (int i = 0; i < 10; ++i) {
            builder.setSize(static_cast<int>(random() % 6), static_cast<int>(random() % 6));
            nodes.push_back(
                addRandomNode(builder, nodeKinds()[random() % nodeKinds().size()], nodes, random));
        }
        for (std::uint32_t uid = 0; uid < 4; ++uid) builder.output(uid, nodes[random() % nodes.size()]);
        compareAll(builder.program, defaultValues(builder.program), seed, "graph " + std::to_string(seed));
    }
}

// One line: each step's node, the outputs it shows in brackets, and behind > the nodes it releases.
std::string textOf(const Schedule& schedule) {
    std::ostringstream text;
    for (const ScheduledNode& step : schedule.steps) {
        text << (text.tellp() > 0 ? " " : "") << step.node;
        for (const std::size_t output : step.outputs) text << '[' << output << ']';
        for (const std::size_t released : step.released) text << '>' << released;
    }
    return text.str();
}

TEST(Evaluator, schedulesOnlyWhatIsNeededAndReleasesAfterTheLastUse) {
    ProgramBuilder builder(8, 8);
    const auto noise = builder.node("fbm");
    const auto levels = builder.node("levels", {noise});
    const auto unused = builder.node("blur", {noise});
    const auto blend = builder.node("blend", {noise, levels});
    const auto normal = builder.node("normal", {blend});
    builder.output(1, blend);
    builder.output(2, normal);
    builder.output(3, unused);
    builder.output(4, blend);
    const auto schedule = [&](std::vector<std::size_t> outputs) {
        return textOf(makeSchedule(builder.program, outputs, defaultValues(builder.program)));
    };
    EXPECT_EQ(schedule({1}), "0 1 3>0>1 4[1]>4>3");
    EXPECT_EQ(schedule({0, 3}), "0 1 3[0][3]>3>0>1");
    EXPECT_EQ(schedule({2}), "0 2[2]>2>0");
}

TEST(Evaluator, refusesRunsThatDoNotFitIntoMemory) {
    ProgramBuilder builder(8, 8);
    builder.output(1, builder.node("fbm"));
    const auto inputs = defaultValues(builder.program);
    const auto run = [&](std::uint64_t limit) {
        evaluate(builder.program, {0}, inputs, limit, runInOneBand, [](std::size_t, const Image&) {});
    };
    const std::uint64_t peak = makeSchedule(builder.program, {0}, inputs).peakBytes;
    EXPECT_GE(peak, 256u * 256 * sizeof(float));
    EXPECT_NO_THROW(run(peak));
    EXPECT_THROW(run(peak - 1), std::bad_alloc);

    const std::vector<std::size_t> manyTextures(64, 0); // all of them wait to be fetched at the end
    EXPECT_GE(makeSchedule(builder.program, manyTextures, inputs).peakBytes, 64u * 256 * 256 * 4);
}

struct BindingCase {
    const char* name;
    ValueType inputType;
    std::vector<double> value;
    float scale, offset;
    ValueType parameterType;
    std::vector<double> expected;
};

TEST(Evaluator, bindsInputsToParameters) {
    const BindingCase cases[] = {
        {"one to one", ValueType::Float2, {3, 4}, 1, 0, ValueType::Float2, {3, 4}},
        {"repeated", ValueType::Float, {3}, 2, 1, ValueType::Float3, {7, 7, 7}},
        {"fourth of 1", ValueType::Float3, {1, 2, 3}, 2, 1, ValueType::Float4, {3, 5, 7, 1}},
        {"integers drive floats", ValueType::Integer2, {1, 2}, 0.5, 0, ValueType::Float2, {0.5, 1}},
        {"integers", ValueType::Integer, {-5}, 1, 0, ValueType::Integer2, {-5, -5}},
    };
    for (const BindingCase& test : cases) {
        InputValues inputs;
        inputs.values.push_back(ProgramBuilder::makeValue(test.inputType, test.value));
        Binding binding;
        binding.input = 0;
        binding.scale = test.scale;
        binding.offset = test.offset;
        const Value value = resolveBinding(binding, test.parameterType, inputs);
        const Value expected = ProgramBuilder::makeValue(test.parameterType, test.expected);
        EXPECT_EQ(value.floats, expected.floats) << test.name;
        EXPECT_EQ(value.integers, expected.integers) << test.name;
    }

    ParameterInfo range{};
    range.minimum = -1;
    range.maximum = 2;
    const auto nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(withinRange(ProgramBuilder::makeValue(ValueType::Float4, {nan, -9, 9, 0.5}), range).floats,
              (std::array<float, 4>{-1, -1, 2, 0.5f}));
}

} // namespace
