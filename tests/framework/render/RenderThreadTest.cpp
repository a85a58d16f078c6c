// The render thread, and the beginning and the end of a process.
#include "tests/framework/render/RenderFixture.h"

#include <atomic>
#include <cstdlib>
#include <thread>

namespace SubstanceAir {

// Gives another thread the chance to do what it must not do yet.
bool happensBeforeRelease(const std::atomic<bool>& event) {
    for (int i = 0; i < 2000 && !event; ++i) std::this_thread::yield();
    return event;
}

TEST_F(RendererTest, ADyingGraphWaitsForTheRunInProgress) {
    const TestPackage package("p");
    auto graph = std::make_unique<TestGraph>(package);
    std::atomic<bool> destroyed{false};
    recording::blockNextStart();
    std::thread host([&, instance = graph.get()] { render({instance}); });
    recording::waitForBlockedStart();
    std::thread destroyer([&] {
        graph.reset();
        destroyed = true;
    });
    EXPECT_FALSE(happensBeforeRelease(destroyed));
    recording::releaseStart();
    destroyer.join();
    host.join();
}

TEST_F(RendererTest, ValuesMayChangeDuringARun) {
    const TestPackage package("p");
    TestGraph graph(package);
    recording::blockNextStart();
    std::thread host([&] { render({&graph}); });
    recording::waitForBlockedStart();
    graph.amount().setValue(0.75f);
    graph.seed().setValue(11);
    recording::releaseStart();
    host.join();
    EXPECT_EQ(graph.take(), "Output 1 dirty; height 1 dirty; ");
    recording::takeTrace();
    render({&graph});
    EXPECT_EQ(linesWith(recording::takeTrace(), {"SetInput(handle1, 0,"}),
              "substanceHandlePushSetInput(handle1, 0, 1:p.amount, Float, 0.75, 0)\n"
              "substanceHandlePushSetInput(handle1, 0, 0:p.$seed, Integer, 11, 0)\n");
    graph.take();
}

TEST_F(RendererTest, ARequestBeforeTheStartIsServed) {
    const TestPackage package("p");
    TestGraph graph(package);
    pushJobs({&graph});
    requestRender();
    startRenderThread();
    waitRenderDone();
    stopRenderThread();
    EXPECT_EQ(graph.take(), "Output 1; height 1; ");
    startRenderThread();
    stopRenderThread(); // idle
    stopRenderThread();
}

TEST_F(RendererTest, ASecondStartWaitsForTheThreadOfTheFirst) {
    const TestPackage package("p");
    TestGraph graph(package);
    std::atomic<bool> started{false};
    recording::blockNextStart();
    pushJobs({&graph});
    startRenderThread();
    requestRender();
    recording::waitForBlockedStart();
    std::thread starter([&] {
        startRenderThread();
        started = true;
    });
    EXPECT_FALSE(happensBeforeRelease(started));
    recording::releaseStart();
    starter.join();
    waitRenderDone();
    graph.amount().setValue(0.25f);
    pushJobs({&graph});
    requestRender();
    waitRenderDone();
    stopRenderThread();
    EXPECT_EQ(graph.take(), "Output 2; height 1; ");
}

#ifdef GTEST_HAS_DEATH_TEST

// Each runs in a process of its own, in which nothing was rendered before.
class FreshProcessTest : public testing::Test {
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

// A host's global objects: made before the library's first use, and so destroyed after it.
std::unique_ptr<TestPackage> earlyPackage;
std::unique_ptr<TestGraph> earlyGraph;
std::unique_ptr<RenderResult> earlyResult;

[[noreturn]] void renderAndExit(bool keepsTextures) {
    recording::reset();
    recording::echoToStandardError();
    earlyPackage = std::make_unique<TestPackage>("early");
    earlyGraph = std::make_unique<TestGraph>(*earlyPackage);
    render({earlyGraph.get()});
    if (keepsTextures)
        earlyResult = earlyGraph->output().grabResult(); // the other one stays with its output
    else
        earlyGraph->take();
    static const TestPackage latePackage("late");
    static TestGraph lateGraph(latePackage);
    recording::fail("substanceHandleStart");
    render({&lateGraph}); // its job still waits at the end
    std::exit(0);
}

TEST_F(FreshProcessTest, EverythingIsReleasedOnceAtTheEnd) {
    EXPECT_EXIT(renderAndExit(false), testing::ExitedWithCode(0),
                "host: substanceHandleRelease\\(handle1\\)\n"
                "host: substanceHandleRelease\\(handle2\\)\n"
                "host: substanceContextRelease\\(context1\\)\n"
                "host: substanceLinkerContextRelease\\(linker2\\)\n$");
}

TEST_F(FreshProcessTest, TexturesKeptToTheVeryEndKeepTheirContext) {
    EXPECT_EXIT(renderAndExit(true), testing::ExitedWithCode(0),
                "host: substanceContextMemoryFree\\(context1, buffer1\\)\n"
                "host: substanceContextMemoryFree\\(context1, buffer2\\)\n"
                "host: substanceContextRelease\\(context1\\)\n"
                "host: substanceLinkerContextRelease\\(linker2\\)\n$");
}

[[noreturn]] void failAndExit(const char* function, unsigned int call, const char* expected) {
    recording::reset();
    recording::fail(function, call);
    {
        const TestPackage package("p");
        TestGraph graph(package);
        recording::takeTrace();
        render({&graph});
        render({&graph});
        std::string trace = linesWith(recording::takeTrace(), {"substanceContext", "Start("});
        trace += graph.take();
        if (trace != expected) {
            std::fprintf(stderr, "expected:\n%s\ngot:\n%s\n", expected, trace.c_str());
            std::_Exit(2);
        }
    }
    std::exit(0);
}

TEST_F(FreshProcessTest, ContextsThatFailAreTriedAgain) {
    EXPECT_EXIT(failAndExit("substanceContextInit", 1, R"(substanceContextInit(null, device) = 7
substanceContextInit(context1, device)
substanceContextSetCallback(context1, 2, callback)
substanceHandleStart(handle1, 0)
Output 1; height 1; )"),
                testing::ExitedWithCode(0), "");
    EXPECT_EXIT(failAndExit("substanceContextSetCallback", 1, R"(substanceContextInit(context1, device)
substanceContextSetCallback(context1, 2, callback) = 7
substanceContextRelease(context1)
substanceContextInit(context2, device)
substanceContextSetCallback(context2, 2, callback)
substanceHandleStart(handle1, 0)
Output 1; height 1; )"),
                testing::ExitedWithCode(0), "");
}

TEST_F(FreshProcessTest, WithoutALinkerContextNothingIsRendered) {
    // The package's own context comes first, the renderer's second.
    EXPECT_EXIT(failAndExit("substanceLinkerContextInit", 2, R"(substanceContextInit(context1, device)
substanceContextSetCallback(context1, 2, callback)
Output 0; height 0; )"),
                testing::ExitedWithCode(0), "");
}

#endif

} // namespace SubstanceAir
