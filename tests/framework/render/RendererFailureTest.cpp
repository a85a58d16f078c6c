// What the renderer does when the linker or the engine fails, or calls back in unusual ways.
#include "tests/framework/render/RenderFixture.h"
#include "tests/recording/Recording.h"

namespace SubstanceAir {

using recording::Start;

TEST_F(RendererTest, FailingCallsLoseNothing) {
    const std::string nothing = "Output 0; height 0; ";
    const struct {
        const char* function;
        unsigned int call;
        std::string first, second; // what the renders leave
    } cases[] = {{"substanceLinkerHandleLink", 1, nothing, "Output 1; height 1; "},
                 {"substanceHandleGetInputDesc", 2, nothing, "Output 1; height 1; "},
                 {"substanceHandleStart", 1, nothing, "Output 1; height 1; "},
                 {"substanceHandleGetOutputs", 1, "Output 0 dirty; height 1; ", "Output 1; height 0; "},
                 {"substanceHandleGetOutputs", 2, "Output 1; height 0 dirty; ", "Output 0; height 1; "}};
    for (const auto& [function, call, first, second] : cases) {
        SCOPED_TRACE(std::string(function) + " " + std::to_string(call));
        const TestPackage fresh("p");
        TestGraph rendered(fresh);
        recording::reset();
        recording::fail(function, call);
        render({&rendered});
        EXPECT_EQ(linesWith(recording::takeTrace(), {" = 7"}).find(function), 0u) << "never called";
        EXPECT_EQ(rendered.take(), first);

        render({&rendered});
        EXPECT_EQ(rendered.take(), second);
        // Where nothing was started, nothing counts as pushed.
        EXPECT_EQ(linesWith(recording::takeTrace(), {", 0, 0:p.$seed"}).empty(), first != nothing);
    }
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
