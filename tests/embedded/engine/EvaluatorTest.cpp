// The scheduled evaluation against the plain one, byte for byte, with row bands of random sizes in shuffled
// order or on several threads.
#include "embedded/engine/Evaluator.h"
#include "embedded/engine/Schedule.h"
#include "embedded/engine/WorkerPool.h"
#include "embedded/program/Verifier.h"
#include "tests/embedded/engine/ProgramBuilder.h"
#include "tests/embedded/program/ProgramText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

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

// Each kind at the end of random graphs.
TEST(Evaluator, equalsPlainEvaluationForEveryKindAndAwkwardSizes) {
    std::mt19937 random(1);
    WorkerPool pool(3);
    const auto onThreads = [&](int rows, int, const RowFunction& function) {
        pool.run(rows, 1 << 15, function); // as if rows were long: two make a band
    };
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
                     std::numeric_limits<std::uint64_t>::max(),
                     variant % 2 ? BandRunner(onThreads) : ShuffledBands(variant),
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
}

TEST(Evaluator, keepsParametersWithinTheirRange) {
    ParameterInfo range{};
    range.minimum = -1;
    range.maximum = 2;
    EXPECT_EQ(toText(withinRange(makeValue(ValueType::Float4, {NAN, -9, 9, 0.5}), range)), "3:-1,-1,2,0.5");
}

} // namespace
