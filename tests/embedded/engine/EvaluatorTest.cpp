// The scheduled evaluation against the plain one, number by number, and what it runs and keeps.
#include "embedded/engine/Plan.h"
#include "embedded/engine/Schedule.h"
#include "embedded/engine/WorkerPool.h"
#include "embedded/program/Cost.h"
#include "embedded/program/Verifier.h"
#include "embedded/rows/InstructionSet.h"
#include "tests/embedded/engine/ProgramBuilder.h"
#include "tests/embedded/engine/Rendering.h"
#include "tests/embedded/program/ProgramText.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace embedded;

namespace {

BandRunner shuffledBands(unsigned seed) {
    return [random = std::mt19937(seed)](int rows, int, const RowFunction& function) mutable {
        std::vector<std::pair<int, int>> bands;
        for (int row = 0; row < rows; row = bands.back().second)
            bands.emplace_back(row, std::min(rows, row + 1 + static_cast<int>(random() % 7)));
        std::shuffle(bands.begin(), bands.end(), random);
        for (const auto& [begin, end] : bands) function(begin, end);
    };
}

const History nothing = {[](const ImageKey&) { return nullptr; }, {}};

// A graph of several sizes with the kind at its end; its outputs give the numbers of some nodes.
ProgramBuilder randomGraph(const NodeKind& kind, std::mt19937& random) {
    ProgramBuilder builder(5, 4);
    const auto cells = builder.node("cellular", {}, {{"result", {3}}});
    const auto colours = builder.node("gradientMap", {cells}, {{"colour1", {0.9, 0.2, 0.1, 0.5}}});
    std::vector<std::int32_t> nodes = {builder.node("fbm"), colours,
                                       builder.picture(builder.imageOf(colours))};
    for (int i = 0; i < 4; ++i) {
        builder.setSize(random() % 7, random() % 7);
        const NodeKind& any = nodeKinds()[random() % nodeKinds().size()];
        nodes.push_back(builder.randomNode(i == 3 ? kind : any, nodes, random));
    }
    for (const std::size_t node : {random() % 7, random() % 7, std::uint_fast32_t{6}}) {
        const int format = builder.imageOf(nodes[node]).channels() == 1 ? 68 : 67;
        builder.program.outputs.push_back({0, nodes[node], format, 0});
    }
    return builder;
}

// Each kind in random graphs: any bands and threads, segments of any length, every instruction set, and
// images of earlier runs with other values. Several graphs for each kind, since most of their parameters
// differ. What is known before a run bounds what it does.
TEST(Evaluator, equalsPlainEvaluationInEveryWay) {
    std::mt19937 random(1);
    WorkerPool pool(3);
    const auto onThreads = [&](int rows, int, const RowFunction& function) {
        pool.run(rows, 1 << 15, function); // as if rows were long: two make a band
    };
    for (const NodeKind& kind : nodeKinds()) {
        for (unsigned variant = 0; variant < 24; ++variant) {
            forceInstructionSet(InstructionSet::Baseline);
            ProgramBuilder builder = randomGraph(kind, random);
            ASSERT_TRUE(verify(builder.program).empty());
            const std::vector<std::size_t> outputs = {0, 1, 2};
            Workshop workshop = plainWorkshop();
            workshop.cache = std::make_shared<ImageCache>();
            workshop.budget = variant % 3 == 0 ? 0 : 1 << 20;
            workshop.segmentLength = 1 + static_cast<int>(random() % 70);
            workshop.runner = variant % 2 ? BandRunner(onThreads) : shuffledBands(variant);
            const ProgramCost cost = costOf(builder.program, outputs, 0, 0);
            const Plan plan = makePlan(builder.program, outputs, builder.inputValues());
            const std::uint64_t peakBytes = makeSchedule(plan, nothing).peakBytes;
            for (int run = 0; run < 2; ++run) {
                forceInstructionSet(static_cast<InstructionSet>(random() % instructionSetCount));
                RenderedTextures rendered;
                const Statistics statistics =
                    evaluate(builder.program, outputs, builder.inputValues(), workshop, rendered);
                EXPECT_LE(statistics.nodesRun, cost.nodes + cost.repeats + cost.conversions) << kind.name;
                EXPECT_LE(statistics.pixelsComputed, cost.computedPixels) << kind.name;
                const bool startsAfresh = workshop.budget == 0 && run == 0;
                EXPECT_TRUE(!startsAfresh || statistics.mostBytesHeld <= peakBytes) << kind.name;
                forceInstructionSet(InstructionSet::Baseline);
                for (const auto& [output, texture] : rendered.textures) {
                    const std::int32_t node = builder.program.outputs[output].node;
                    const Image expected = builder.imageOf(node);
                    EXPECT_TRUE(texture.finished);
                    EXPECT_TRUE(sameNumbers(imageOf(texture, expected.channels()), expected))
                        << kind.name << variant << ", node " << node << " of\n"
                        << toText(builder.program);
                }
                EXPECT_EQ(rendered.textures.size(), 3u);
                // The next run finds some images of this one.
                for (Binding& binding : builder.program.nodes[random() % 7].parameters)
                    if (binding.constant.type == ValueType::Float) binding.constant.floats[0] += 0.01f;
            }
        }
    }
    forceInstructionSet(bestInstructionSet());
}

// One line: each group's node, + where its image is kept, what streams into it in parentheses, the outputs it
// shows in brackets, and behind > the images it releases.
TEST(Evaluator, streamsWhatIsReadOnceAndKeepsTheRest) {
    ProgramBuilder builder(8, 8);
    const auto noise = builder.node("fbm");
    const auto levels = builder.node("levels", {noise});
    const auto unused = builder.node("blur", {noise});
    const auto blend = builder.node("blend", {noise, levels});
    const auto normal = builder.node("normal", {blend});
    const auto colours = builder.node("gradientMap", {levels});
    const auto lit = builder.node("blend", {colours, normal});
    for (const auto node : {blend, lit, unused, blend}) builder.program.outputs.push_back({0, node, 0, 0});
    const auto schedule = [&](const std::vector<std::size_t>& outputs, const History& history) {
        const Plan plan = makePlan(builder.program, outputs, builder.inputValues());
        std::ostringstream text;
        const auto name = [&](std::size_t node) { return plan.nodes[node].kind->name; };
        for (const Group& group : makeSchedule(plan, history).groups) {
            text << ' ' << name(group.root) << (group.keepsImage ? "+" : "");
            for (const std::size_t node : group.streamed) text << '(' << name(node) << ')';
            for (const Showing& showing : group.showings) text << '[' << showing.output << ']';
            for (const std::size_t node : group.released) text << '>' << name(node);
        }
        return text.str();
    };
    EXPECT_EQ(schedule({0, 3}, nothing), " fbm+ blend(levels)[0][3]>fbm");
    EXPECT_EQ(schedule({2}, nothing), " fbm+ blur+[2]>blur>fbm");
    EXPECT_EQ(schedule({1}, nothing), " fbm+ levels+ blend+>fbm blend(normal)(gradientMap)[1]>blend>levels");
    History edited = nothing; // only the last node is another one than in the run before
    Plan before = makePlan(builder.program, {1}, builder.inputValues());
    before.nodes.pop_back();
    for (const PlanNode& node : before.nodes) edited.computedBefore.insert(node.key);
    EXPECT_EQ(schedule({1}, edited),
              " fbm+ levels+ blend+>fbm gradientMap+>levels blend(normal)[1]>gradientMap>blend");
    const History everything = {[](const ImageKey&) { return std::make_shared<Image>(1, 1, 1); }, {}};
    EXPECT_EQ(schedule({1}, everything), " blend[1]>blend");
}

TEST(Evaluator, runsOnlyWhatChangedWithinItsBudget) {
    ProgramBuilder builder(8, 8);
    builder.program.inputs = {makeInput(1, ValueType::Float), makeInput(2, ValueType::Float)};
    builder.program.nodes = {makeNode("fbm"), makeBound("blur", {0}, "sigma", boundTo(0)),
                             makeBound("levels", {1}, "outputHigh", boundTo(1))};
    builder.program.outputs = {{1, 2, 68, 0}};
    constexpr std::uint64_t imageBytes = 256 * 256 * sizeof(float);
    for (const std::uint64_t budget : {8 * imageBytes, std::uint64_t{0}}) {
        Workshop workshop = plainWorkshop();
        workshop.cache = std::make_shared<ImageCache>();
        workshop.budget = budget;
        const struct {
            float sigma, high;
            std::uint64_t nodesRun;
        } edits[] = {{0.1f, 1, 3}, {0.1f, 0.5f, 1}, {0.2f, 1, 2}, {0.1f, 1, 1}}; // and back again
        for (const auto& [sigma, high, nodesRun] : edits) {
            InputValues inputs = builder.inputValues();
            inputs.values[0].floats[0] = sigma;
            inputs.values[1].floats[0] = high;
            RenderedTextures rendered;
            const Statistics run = evaluate(builder.program, {0}, inputs, workshop, rendered);
            EXPECT_EQ(run.nodesRun, budget > 0 ? nodesRun : 3) << sigma << ' ' << high;
            EXPECT_LE(run.bytesHeld, budget);
            EXPECT_EQ(run.pixelsComputed, run.nodesRun * 256 * 256);
        }
    }
}

// As long as programs may be, in chains where each node reads the one before twice.
TEST(Evaluator, runsTheLongestPrograms) {
    ProgramBuilder builder(0, 0);
    builder.program.inputs = {makeInput(1, ValueType::Float, {0.5})};
    std::int32_t last = builder.node("uniform", {}, {{"value", {1}}});
    while (builder.program.nodes.size() + 1 < maxProgramNodes) last = builder.node("blend", {last, last});
    builder.program.nodes.push_back(makeBound("levels", {last}, "outputHigh", boundTo(0)));
    builder.program.nodes.back().resolution = builder.program.nodes[0].resolution;
    builder.program.outputs = {{1, last + 1, 68, 0}};
    Workshop workshop = plainWorkshop();
    workshop.cache = std::make_shared<ImageCache>();
    InputValues inputs = builder.inputValues();
    for (const float high : {0.5f, 0.25f}) { // the second run finds a node that the edit leaves alone
        inputs.values[0].floats[0] = high;
        RenderedTextures rendered;
        evaluate(builder.program, {0}, inputs, workshop, rendered);
        EXPECT_EQ(imageOf(rendered.textures.at(0), 1).row(0)[0], high);
    }
}

TEST(Evaluator, refusesRunsThatDoNotFitIntoMemory) {
    ProgramBuilder builder(8, 8);
    builder.program.outputs = {{1, builder.node("fbm"), 0, 0}};
    const std::uint64_t peak = makeSchedule(makePlan(builder.program, {0}, {}), nothing).peakBytes;
    EXPECT_GE(peak, 256u * 256 * sizeof(float));
    Workshop workshop = plainWorkshop();
    RenderedTextures rendered;
    workshop.limit = peak - 1;
    EXPECT_THROW(evaluate(builder.program, {0}, {}, workshop, rendered), std::bad_alloc);
    EXPECT_TRUE(rendered.textures.empty());
    workshop.limit = peak;
    EXPECT_NO_THROW(evaluate(builder.program, {0}, {}, workshop, rendered));
}

} // namespace
