// The scheduled evaluation against the plain one, byte for byte, with row bands of random sizes in shuffled
// order.
#include "embedded/engine/Evaluator.h"
#include "embedded/engine/Schedule.h"
#include "embedded/program/Verifier.h"
#include "tests/embedded/engine/ProgramBuilder.h"
#include "tests/embedded/program/ProgramText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

using namespace embedded;

namespace {

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

bool sameNumbers(const Image& image, const Image& expected) {
    const float* const samples = expected.row(0);
    const std::size_t count = expected.sampleCount();
    return image.sameSize(expected) && image.channels() == expected.channels() &&
           std::all_of(samples, samples + count, [](float sample) { return std::isfinite(sample); }) &&
           std::memcmp(image.row(0), samples, count * sizeof(float)) == 0;
}

// Each kind at the end of random graphs.
TEST(Evaluator, equalsPlainEvaluationForEveryKindAndAwkwardSizes) {
    std::mt19937 random(1);
    for (const NodeKind& kind : nodeKinds()) {
        for (unsigned variant = 0; variant < 24; ++variant) {
            ProgramBuilder builder(5, 4);
            const auto cells = builder.node("cellular", {}, {{"result", {3}}});
            std::vector<std::int32_t> nodes = {
                builder.node("fbm"),
                builder.node("gradientMap", {cells}, {{"colour1", {0.9, 0.2, 0.1, 0.5}}})};
            Image colours = builder.imageOf(nodes.back());
            for (int i = 0; i < 4; ++i) {
                const int log2Width = static_cast<int>(random() % 7);
                const int log2Height = static_cast<int>(random() % 7);
                builder.setSize(log2Width, log2Height);
                const NodeKind& any = nodeKinds()[random() % nodeKinds().size()];
                nodes.push_back(i == 0 ? builder.picture(std::move(colours))
                                       : builder.randomNode(i == 3 ? kind : any, nodes, random));
            }
            for (const std::size_t node : {random() % 6, random() % 6, std::uint_fast32_t{5}})
                builder.program.outputs.push_back({0, nodes[node], 0, 0});
            ASSERT_TRUE(verify(builder.program).empty());

            std::size_t received = 0;
            evaluate(builder.program, {0, 1, 2}, builder.inputValues(),
                     std::numeric_limits<std::uint64_t>::max(), ShuffledBands(variant),
                     [&](std::size_t output, const Image& image) {
                         const std::int32_t node = builder.program.outputs[output].node;
                         EXPECT_TRUE(sameNumbers(image, builder.imageOf(node)))
                             << kind.name << variant << ", node " << node << " of\n"
                             << toText(builder.program);
                         ++received;
                     });
            EXPECT_EQ(received, 3u);
        }
    }
}

// One line: each step's node, the outputs it shows in brackets, and behind > the nodes it releases.
TEST(Evaluator, schedulesOnlyWhatIsNeededAndReleasesAfterTheLastUse) {
    ProgramBuilder builder(8, 8);
    const auto noise = builder.node("fbm");
    const auto levels = builder.node("levels", {noise});
    const auto unused = builder.node("blur", {noise});
    const auto blend = builder.node("blend", {noise, levels});
    const auto normal = builder.node("normal", {blend});
    for (const auto node : {blend, normal, unused, blend}) builder.program.outputs.push_back({0, node, 0, 0});
    const auto schedule = [&](const std::vector<std::size_t>& outputs) {
        std::ostringstream text;
        for (const auto& step : makeSchedule(builder.program, outputs, builder.inputValues()).steps) {
            text << ' ' << step.node;
            for (const std::size_t output : step.outputs) text << '[' << output << ']';
            for (const std::size_t released : step.released) text << '>' << released;
        }
        return text.str();
    };
    EXPECT_EQ(schedule({1}), " 0 1 3>0>1 4[1]>4>3");
    EXPECT_EQ(schedule({0, 3}), " 0 1 3[0][3]>3>0>1");
    EXPECT_EQ(schedule({2}), " 0 2[2]>2>0");
}

TEST(Evaluator, refusesRunsThatDoNotFitIntoMemory) {
    ProgramBuilder builder(8, 8);
    builder.program.outputs = {{1, builder.node("fbm"), 0, 0}};
    const auto run = [&](std::uint64_t limit) {
        evaluate(builder.program, {0}, {}, limit, runInOneBand, [](std::size_t, const Image&) {});
    };
    const std::uint64_t peak = makeSchedule(builder.program, {0}, {}).peakBytes;
    EXPECT_GE(peak, 256u * 256 * sizeof(float));
    EXPECT_NO_THROW(run(peak));
    EXPECT_THROW(run(peak - 1), std::bad_alloc);

    std::int32_t last = 0;
    for (int i = 0; i < 20; ++i) last = builder.node("levels", {last});
    builder.program.outputs.push_back({2, last, 0, 0}); // of a chain only two images are held at a time
    EXPECT_LT(makeSchedule(builder.program, {1}, {}).peakBytes, 2 * peak);

    const std::vector<std::size_t> manyTextures(64, 0); // all of them wait to be fetched at the end
    EXPECT_GE(makeSchedule(builder.program, manyTextures, {}).peakBytes, 64u * 256 * 256 * 4);
}

TEST(Evaluator, bindsInputsToParameters) {
    const struct {
        Value input;
        Binding binding;
        ValueType type;
        const char* expected;
    } cases[] = {
        {makeValue(ValueType::Float2, {3, 4}), boundTo(0), ValueType::Float2, "1:3,4"},
        {makeValue(ValueType::Float, {3}), boundTo(0, 2, 1), ValueType::Float3, "2:7,7,7"},
        {makeValue(ValueType::Float3, {1, 2, 3}), boundTo(0, 2, 1), ValueType::Float4, "3:3,5,7,1"},
        {makeValue(ValueType::Integer2, {1, 2}), boundTo(0, 0.5), ValueType::Float2, "1:0.5,1"},
        {makeValue(ValueType::Integer, {-5}), boundTo(0), ValueType::Integer2, "8:-5,-5"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(toText(resolveBinding(test.binding, test.type, {{test.input}, {}})), test.expected);

    ParameterInfo range{};
    range.minimum = -1;
    range.maximum = 2;
    EXPECT_EQ(toText(withinRange(makeValue(ValueType::Float4, {NAN, -9, 9, 0.5}), range)), "3:-1,-1,2,0.5");
}

} // namespace
