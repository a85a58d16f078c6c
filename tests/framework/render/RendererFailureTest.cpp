// What the renderer does when the linker or the engine fails, or calls back in unusual ways.
#include "tests/framework/render/RenderFixture.h"
#include "tests/recording/Recording.h"

#include <thread>

namespace SubstanceAir {

using recording::Start;

TEST_F(RendererTest, FailingCallsLoseNothing) {
    struct Case {
        const char* function;
        unsigned int call;
        const char* afterFailure; // what the first render leaves
    };
    const char* const nothing = "Output 0; height 0; ";
    for (const Case& failing :
         {Case{"substanceLinkerHandleInit", 1, nothing},
          Case{"substanceLinkerHandlePushAssemblyMemory", 1, nothing},
          Case{"substanceLinkerHandleLink", 1, nothing}, Case{"substanceHandleInit", 1, nothing},
          Case{"substanceHandleGetDesc", 1, nothing}, Case{"substanceHandleGetInputDesc", 2, nothing},
          Case{"substanceHandlePushOutputs", 1, nothing}, Case{"substanceHandleStart", 1, nothing},
          Case{"substanceHandleGetOutputs", 1, "Output 0 dirty; height 1; "},
          Case{"substanceHandleGetOutputs", 2, "Output 1; height 0 dirty; "}}) {
        SCOPED_TRACE(std::string(failing.function) + " " + std::to_string(failing.call));
        const TestPackage fresh("p");
        TestGraph rendered(fresh);
        recording::reset();
        recording::fail(failing.function, failing.call);
        render({&rendered});
        EXPECT_EQ(linesWith(recording::takeTrace(), {" = 7"}).find(failing.function), 0u) << "never called";
        EXPECT_EQ(rendered.take(), failing.afterFailure);

        recording::reset();
        render({&rendered});
        const std::string trace = recording::takeTrace();
        const std::string second = rendered.take();
        if (failing.afterFailure != nothing) {
            EXPECT_EQ(second,
                      failing.afterFailure[7] == '0' ? "Output 1; height 0; " : "Output 0; height 1; ");
            continue;
        }
        EXPECT_EQ(second, "Output 1; height 1; ");
        // Nothing was started, so nothing counts as pushed.
        EXPECT_EQ(linesWith(trace, {", 0, 2:p.picture", ", 0, 0:p.$seed"}),
                  "substanceHandlePushSetInput(handle1, 0, 2:p.picture, Image, null, 0)\n"
                  "substanceHandlePushSetInput(handle1, 0, 0:p.$seed, Integer, 3, 0)\n");
    }
}

TEST_F(RendererTest, AFailedInputPushIsTriedAgain) {
    recording::fail("substanceHandlePushSetInput", 2);
    render({&graph});
    EXPECT_EQ(graph.take(), "Output 1 dirty; height 1 dirty; ");
    recording::takeTrace();
    render({&graph});
    EXPECT_EQ(linesWith(recording::takeTrace(), {"SetInput(handle1, 0,"}),
              "substanceHandlePushSetInput(handle1, 0, 1:p.amount, Float, 0.5, 0)\n");
    EXPECT_EQ(graph.take(), "Output 1; height 1; ");
}

TEST_F(RendererTest, WhatCameBeforeAFailureIsNotRenderedTwice) {
    recording::onNextStart([](const Start& start) {
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

TEST_F(RendererTest, TexturesWithoutPixelsAreNoResults) {
    for (const recording::Texture& texture :
         {recording::Texture{0, 2}, recording::Texture{4, 0}, recording::Texture{4, 2, -1, false}}) {
        recording::setTexture(texture);
        render({&graph});
        EXPECT_EQ(graph.take(), "Output 0 dirty; height 0 dirty; ");
        EXPECT_EQ(recording::liveTextures(), 0u);
    }
}

TEST_F(RendererTest, CallbacksOfManyThreadsReachTheirOutputsOnce) {
    recording::onNextStart([](const Start& start) { // each twice
        std::vector<std::thread> threads;
        for (size_t i : {1, 0, 1, 0}) threads.emplace_back([&start, i] { start.report(start.reports[i]); });
        for (std::thread& thread : threads) thread.join();
        return 0u;
    });
    render({&graph});
    EXPECT_EQ(recording::liveTextures(), 2u);
    EXPECT_EQ(graph.take(), "Output 1; height 1; ");
}

TEST_F(RendererTest, CallbacksThatNobodyAskedForDoNothing) {
    graph.output().enabled = false;
    recording::onNextStart([](const Start& start) {
        start.report({0, start.reports[0].job});
        start.report({0, nullptr});
        return start.reportAll();
    });
    render({&graph});
    EXPECT_EQ(graph.take(), "Output 0 dirty; height 1; ");
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

    const TestPackage other("q");
    auto alone = std::make_unique<TestGraph>(other);
    recording::fail("substanceLinkerHandleLink");
    render({alone.get()});
    alone.reset();
    recording::takeTrace();
    render({});
    EXPECT_EQ(recording::takeTrace(), "");
}

} // namespace SubstanceAir
