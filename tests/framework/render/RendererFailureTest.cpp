// What the renderer does when the linker or the engine fails, or calls back in unusual ways.
#include "tests/framework/render/RenderFixture.h"

namespace SubstanceAir {

TEST_F(RendererTest, AFailedLinkIsTriedAgainByTheNextCall) {
    const TestPackage package("p");
    TestGraph graph(package);
    recording::reset();
    recording::fail("substanceLinkerHandleLink");
    render({&graph});
    EXPECT_EQ(recording::takeTrace(), R"(worker: substanceLinkerHandleInit(link1, linker1)
worker: substanceLinkerHandlePushAssemblyMemory(link1, "assembly:p", 10)
worker: substanceLinkerHandleSetOutputFormat(link1, p.Output, 0, 1)
worker: substanceLinkerHandleSetOutputFormat(link1, p.height, 32, 0)
worker: substanceLinkerHandleLink(link1) = 7
)") << "the linker's handle stays unreleased";
    EXPECT_EQ(graph.take(), "Output 0; height 0; ");

    render({});
    EXPECT_EQ(linesWith(recording::takeTrace(), {"Link(", "Release(", "HandleInit(", ", 2, {", "Start("}),
              R"(substanceLinkerHandleInit(link2, linker1)
substanceLinkerHandleLink(link2)
substanceLinkerHandleRelease(link2)
substanceHandleInit(handle1, context1, "linked:p", 0)
substanceHandlePushOutputs(handle1, 2, {p.Output p.height}, 2, job1)
substanceHandleStart(handle1, 0)
)");
    EXPECT_EQ(graph.take(), "Output 1; height 1; ");
}

struct FailingCall {
    const char* function;
    unsigned int call;
    const char* afterFailure; // what the first render leaves
};

void PrintTo(const FailingCall& failing, std::ostream* stream) {
    *stream << failing.function << failing.call;
}

class FailingCallTest : public RendererTest, public testing::WithParamInterface<FailingCall> {};

TEST_P(FailingCallTest, LosesNothing) {
    const TestPackage package("p");
    TestGraph graph(package);
    recording::reset();
    recording::fail(GetParam().function, GetParam().call);
    render({&graph});
    EXPECT_EQ(linesWith(recording::takeTrace(), {" = 7"}).find(GetParam().function), 0u) << "never called";
    const std::string first = graph.take();
    EXPECT_EQ(first, GetParam().afterFailure);

    recording::reset();
    render({&graph});
    const std::string second = graph.take();
    const std::string trace = recording::takeTrace();
    for (const std::string output : {"Output", "height"}) {
        EXPECT_NE(first.find(output + " 1") == std::string::npos,
                  second.find(output + " 1") == std::string::npos)
            << "exactly one result of " << output << "\n"
            << trace;
        EXPECT_EQ(second.find("dirty"), std::string::npos);
    }
    if (first.find('1') == std::string::npos) {
        // Nothing was started, so nothing counts as pushed.
        EXPECT_NE(trace.find("SetInput(handle1, 0, 2:p.picture, Image, null, 0)\n"), std::string::npos)
            << trace;
        EXPECT_NE(trace.find("SetInput(handle1, 0, 0:p.$seed, Integer, 3, 0)\n"), std::string::npos) << trace;
    }
}

const char* const nothing = "Output 0; height 0; ";
INSTANTIATE_TEST_SUITE_P(
    , FailingCallTest,
    testing::Values(FailingCall{"substanceLinkerHandleInit", 1, nothing},
                    FailingCall{"substanceLinkerHandlePushAssemblyMemory", 1, nothing},
                    FailingCall{"substanceLinkerHandleLink", 1, nothing},
                    FailingCall{"substanceHandleInit", 1, nothing},
                    FailingCall{"substanceHandleGetDesc", 1, nothing},
                    FailingCall{"substanceHandleGetInputDesc", 2, nothing},
                    FailingCall{"substanceHandlePushOutputs", 1, nothing},
                    FailingCall{"substanceHandleStart", 1, nothing},
                    FailingCall{"substanceHandleGetOutputs", 1, "Output 0 dirty; height 1; "},
                    FailingCall{"substanceHandleGetOutputs", 2, "Output 1; height 0 dirty; "}),
    [](const auto& each) { return each.param.function + std::to_string(each.param.call); });

TEST_F(RendererTest, AFailedInputPushIsTriedAgain) {
    const TestPackage package("p");
    TestGraph graph(package);
    recording::reset();
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
    const TestPackage package("p");
    TestGraph graph(package);
    recording::Completions completions;
    completions.limit = 1;
    recording::setCompletions(completions);
    render({&graph});
    recording::reset();
    render({});
    EXPECT_EQ(linesWith(recording::takeTrace(), {", 2, {"}),
              "substanceHandlePushOutputs(handle1, 2, {p.height}, 1, job1)\n");
    EXPECT_EQ(graph.take(), "Output 1; height 1; ");
}

TEST_F(RendererTest, AFailedInitialisationReleasesTheHandle) {
    const TestPackage package("p");
    TestGraph graph(package);
    for (const char* const function : {"substanceHandleGetDesc", "substanceHandleGetInputDesc"}) {
        recording::reset();
        recording::fail(function);
        render({&graph});
        const std::string trace = recording::takeTrace();
        EXPECT_EQ(linesWith(trace, {"HandleRelease(handle", "Start("}), "substanceHandleRelease(handle1)\n")
            << trace;
    }
}

TEST_F(RendererTest, TexturesWithoutPixelsAreNoResults) {
    const TestPackage package("p");
    TestGraph graph(package);
    for (const recording::Texture& texture :
         {recording::Texture{0, 2}, recording::Texture{4, 0}, recording::Texture{4, 2, -1, false}}) {
        recording::reset();
        recording::setTexture(texture);
        render({&graph});
        EXPECT_EQ(graph.take(), "Output 0 dirty; height 0 dirty; ");
        EXPECT_EQ(recording::liveTextures(), 0u);
    }
}

TEST_F(RendererTest, CallbacksOfAnyThreadInAnyOrderReachTheirOutputs) {
    using recording::Caller;
    const TestPackage package("p");
    TestGraph graph(package);
    for (const Caller caller : {Caller::StartingThread, Caller::OneThread, Caller::ThreadEach})
        for (const bool reversed : {false, true})
            for (const unsigned int repeats : {1u, 2u}) {
                recording::reset();
                recording::setCompletions({caller, reversed, repeats});
                graph.output().dirty = graph.height().dirty = true;
                render({&graph});
                EXPECT_EQ(recording::liveTextures(), 2u);
                EXPECT_EQ(graph.take(), "Output 1; height 1; ");
            }
}

TEST_F(RendererTest, CallbacksThatNobodyAskedForDoNothing) {
    const TestPackage package("p");
    TestGraph graph(package);
    graph.height().enabled = false;
    recording::reset();
    recording::setCompletions({recording::Caller::OneThread, false, 1, {graph.height().desc.uid}});
    render({&graph});
    EXPECT_EQ(linesWith(recording::takeTrace(), {"engine: "}), R"(outputCompleted(handle1, 0:p.Output, job1)
substanceHandleGetOutputDesc(handle1, 0)
substanceHandleGetOutputs(handle1, 0, 0, 1, buffer1)
substanceHandleGetParentContext(handle1)
outputCompleted(handle1, 1:p.height, job1)
substanceHandleGetOutputDesc(handle1, 1)
)");
    EXPECT_EQ(graph.take(), "Output 1; height 0 dirty; ");
}

TEST_F(RendererTest, WaitingJobsForgetGraphsThatDie) {
    const TestPackage package("p");
    auto dying = std::make_unique<TestGraph>(package);
    TestGraph living(package);
    dying->height().enabled = false;
    living.output().enabled = false;
    recording::fail("substanceLinkerHandleLink");
    render({dying.get(), &living});
    dying.reset();
    recording::reset();
    render({});
    EXPECT_EQ(linesWith(recording::takeTrace(), {", 2, {"}),
              "substanceHandlePushOutputs(handle1, 2, {p.height}, 1, job1)\n");
    EXPECT_EQ(living.take(), "Output 0 dirty; height 1; ");

    const TestPackage other("q");
    auto alone = std::make_unique<TestGraph>(other);
    recording::fail("substanceLinkerHandleLink");
    render({alone.get()});
    alone.reset();
    recording::reset();
    render({});
    EXPECT_EQ(recording::takeTrace(), "");
}

} // namespace SubstanceAir
