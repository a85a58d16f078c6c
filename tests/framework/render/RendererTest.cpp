// What the renderer pushes, and when, and what it keeps of jobs that fail.
#include "framework/render/RenderState.h"
#include "tests/framework/render/RenderFixture.h"
#include "tests/recording/Recording.h"

#include <boost/make_shared.hpp>

namespace SubstanceAir {

TEST_F(RendererTest, StateKeyFollowsTheOnlyGraphOfAState) {
    render({&graph});
    graph.take();
    recording::reset();
    graph.seed().setValue(9);
    render({&graph});
    EXPECT_EQ(linesWith(recording::takeTrace(), {"Link(", "SetInput(handle1, 0,"}),
              "substanceHandlePushSetInput(handle1, 0, 0:p.$seed, Integer, 9, 0)\n");
    EXPECT_EQ(graph.take(), "Output 1; height 1; ");
}

TEST_F(RendererTest, JobsOfOnePackageMergeAndTheNewerWins) {
    TestGraph newer(package);
    graph.amount().setValue(0.1f);
    newer.amount().setValue(0.9f);
    newer.output().enabled = false;
    render({&graph, &newer});
    EXPECT_EQ(linesWith(recording::takeTrace(), {", 0, 1:", ", 2, {", "HandleInit(handle", "Start("}),
              R"(substanceHandleInit(handle1, context1, "linked:p", 0)
substanceHandlePushSetInput(handle1, 0, 1:p.amount, Float, 0.9, 0)
substanceHandlePushOutputs(handle1, 2, {p.Output p.height}, 2, job1)
substanceHandleStart(handle1, 0)
)");
    EXPECT_EQ(graph.take() + newer.take(), "Output 1; height 0 dirty; Output 0 dirty; height 1; ");
}

TEST_F(RendererTest, AStateDestroysJobsOfAnotherKey) {
    RenderState state;
    EXPECT_TRUE(state.push(makeRenderJob(graph)));
    graph.seed().setValue(9);
    std::unique_ptr<RenderJob> other = makeRenderJob(graph);
    EXPECT_FALSE(state.push(std::move(other)));
    EXPECT_EQ(other, nullptr);
}

TEST_F(RendererTest, ImagesArePushedAsTheyWereWhenTheJobWasMade) {
    const std::unique_ptr<unsigned char[]> pixels(new unsigned char[8]{1, 2, 3, 4, 5, 6, 7, 8});
    const SubstanceTextureInput image{pixels.get(), 2, 1, 0, 0, 1};
    graph.picture().setImage(boost::make_shared<InputImage>(image));
    pushJobs({&graph});
    graph.picture().reset();
    render({});
    EXPECT_EQ(
        linesWith(recording::takeTrace(), {"picture"}),
        R"(substanceHandlePushSetInput(handle1, 0, 2:p.picture, Image, image 2x1 format 0 pixels 0102030405060708, 0)
substanceHandlePushSetInput(handle1, 2048, 2:p.picture, Image, image 2x1 format 0 pixels 0102030405060708, 0)
)");
    EXPECT_EQ(graph.take(), "Output 1 dirty; height 1 dirty; ");
}

TEST_F(RendererTest, WhatCameBeforeAFailureIsNotRenderedTwice) {
    recording::onNextStart([](const recording::Start& start) {
        start.report(start.reports[0]);
        return 7u;
    });
    render({&graph});
    recording::takeTrace();
    render({});
    EXPECT_EQ(linesWith(recording::takeTrace(), {", 2, {"}),
              "substanceHandlePushOutputs(handle1, 2, {p.height}, 1, job1)\n");
    EXPECT_EQ(graph.take(), "Output 1; height 1; ");
}

TEST_F(RendererTest, NewerJobsJoinThoseOfAFailedRun) {
    recording::onNextStart([this](const recording::Start&) {
        graph.amount().setValue(0.75f);
        pushJobs({&graph});
        return 7u;
    });
    render({&graph});
    recording::takeTrace();
    render({});
    EXPECT_EQ(linesWith(recording::takeTrace(), {", 0, 1:", ", 2, {"}),
              "substanceHandlePushSetInput(handle1, 0, 1:p.amount, Float, 0.75, 0)\n"
              "substanceHandlePushOutputs(handle1, 2, {p.Output p.height}, 2, job1)\n");
    EXPECT_EQ(graph.take(), "Output 1; height 1; ");
}

// Late is what an earlier run should have rendered.
TEST_F(RendererTest, LateResultsStayUntilNewerOnesCome) {
    const auto failToRender = [this] {
        recording::fail("substanceHandleStart");
        render({&graph});
    };
    failToRender();
    render({});
    graph.amount().setValue(0.1f);
    failToRender();
    EXPECT_EQ(graph.take(), "Output 1; height 1; ");
    render({});
    graph.amount().setValue(0.2f);
    render({&graph});
    EXPECT_EQ(graph.take(), "Output 1; height 0; ");

    graph.seed().setValue(1);
    failToRender();
    for (const int newer : {2, 3}) {
        graph.seed().setValue(newer);
        render({&graph}); // of the waiting job nothing is left but what this one asks for, too
    }
    EXPECT_EQ(graph.take(), "Output 2; height 2; ");
}

TEST_F(RendererTest, WaitingJobsForgetGraphsThatDie) {
    auto dying = std::make_unique<TestGraph>(package);
    dying->height().enabled = false;
    graph.output().enabled = false;
    recording::fail("substanceLinkerHandleLink");
    render({dying.get(), &graph});
    dying.reset();
    recording::takeTrace();
    render({});
    EXPECT_EQ(linesWith(recording::takeTrace(), {", 2, {"}),
              "substanceHandlePushOutputs(handle1, 2, {p.height}, 1, job1)\n");
    EXPECT_EQ(graph.take(), "Output 0 dirty; height 1; ");

    const PackageDesc other = testPackage("q");
    auto alone = std::make_unique<TestGraph>(other);
    recording::fail("substanceLinkerHandleLink");
    render({alone.get()});
    alone.reset();
    recording::takeTrace();
    render({});
    EXPECT_EQ(recording::takeTrace(), "");
}

} // namespace SubstanceAir
