// The render thread, and the beginning and the end of a process.
#include "tests/framework/render/RenderFixture.h"
#include "tests/recording/Recording.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>

namespace SubstanceAir {

using recording::Start;

// Does what has to wait for the end of the run while the next start is under way.
class DuringTheNextRun {
public:
    explicit DuringTheNextRun(const std::function<void()>& action) {
        recording::onNextStart([this, action](const Start& start) {
            thread = std::thread([this, action] {
                begun = true;
                action();
                happened = true;
            });
            while (!begun) std::this_thread::yield();
            for (int i = 0; i < 2000 && !happened; ++i) std::this_thread::yield();
            EXPECT_FALSE(happened) << "it did not wait";
            return start.reportAll();
        });
    }
    ~DuringTheNextRun() { thread.join(); }

private:
    std::thread thread;
    std::atomic<bool> begun{false}, happened{false};
};

TEST_F(RendererTest, ADyingGraphWaitsForTheRunInProgress) {
    auto dying = std::make_unique<TestGraph>(package);
    const DuringTheNextRun destruction([&] { dying.reset(); });
    render({dying.get()});
}

TEST_F(RendererTest, ASecondStartWaitsForTheThreadOfTheFirst) {
    {
        const DuringTheNextRun secondStart(startRenderThread);
        pushJobs({&graph});
        startRenderThread();
        requestRender();
        waitRenderDone();
    }
    graph.amount().setValue(0.25f);
    pushJobs({&graph});
    requestRender();
    waitRenderDone();
    stopRenderThread();
    EXPECT_EQ(graph.take(), "Output 2; height 1; ");
}

TEST_F(RendererTest, ValuesMayChangeDuringARun) {
    recording::onNextStart([this](const Start& start) {
        graph.amount().setValue(0.75f);
        graph.seed().setValue(11);
        return start.reportAll();
    });
    render({&graph});
    EXPECT_EQ(graph.take(), "Output 1 dirty; height 1 dirty; ");
    recording::takeTrace();
    render({&graph});
    EXPECT_EQ(linesWith(recording::takeTrace(), {"SetInput(handle1, 0,"}),
              "substanceHandlePushSetInput(handle1, 0, 1:p.amount, Float, 0.75, 0)\n"
              "substanceHandlePushSetInput(handle1, 0, 0:p.$seed, Integer, 11, 0)\n");
    graph.take();
}

#ifdef GTEST_HAS_DEATH_TEST // these need a process in which nothing was rendered before

// A host's global objects: made before the library's, and so destroyed after them.
struct Early {
    std::unique_ptr<TestPackage> package;
    std::unique_ptr<TestGraph> graph;
    std::unique_ptr<RenderResult> result;
};
#if defined(_MSC_VER)
#pragma init_seg(lib)
Early early;
#else
__attribute__((init_priority(102))) Early early;
#endif

[[noreturn]] void renderAndExit() {
    recording::reset();
    recording::echoToStandardError();
    early.package = std::make_unique<TestPackage>("early");
    early.graph = std::make_unique<TestGraph>(*early.package);
    render({early.graph.get()});
    early.result = early.graph->output().grabResult(); // the other one stays with its output
    static const TestPackage latePackage("late");
    static TestGraph lateGraph(latePackage);
    recording::fail("substanceHandleStart");
    render({&lateGraph}); // its job still waits at the end
    std::exit(0);
}

// Textures that the host keeps to the very end keep their context.
TEST(RendererProcess, ReleasesEverythingOnceAtTheEnd) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(renderAndExit(), testing::ExitedWithCode(0),
                "host: substanceHandleRelease\\(handle1\\)\n"
                "host: substanceHandleRelease\\(handle2\\)\n"
                "host: substanceContextMemoryFree\\(context1, buffer1\\)\n"
                "host: substanceContextMemoryFree\\(context1, buffer2\\)\n"
                "host: substanceContextRelease\\(context1\\)\n"
                "host: substanceLinkerContextRelease\\(linker2\\)\n$");
}

// Renders twice, and prints what became of the contexts.
[[noreturn]] void failAndExit(const char* function, unsigned int call) {
    recording::reset();
    recording::fail(function, call);
    {
        const TestPackage package("p");
        TestGraph graph(package);
        render({&graph});
        render({&graph});
        const std::string trace = linesWith(recording::takeTrace(), {"substanceContext", "Start("});
        std::fprintf(stderr, "%s%s", trace.c_str(), graph.take().c_str());
    }
    std::exit(0);
}

TEST(RendererProcess, TriesContextsThatFailAgain) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(failAndExit("substanceContextInit", 1), testing::ExitedWithCode(0),
                "^substanceContextInit\\(null, device\\) = 7\n"
                "substanceContextInit\\(context1, device\\)\n"
                "substanceContextSetCallback\\(context1, 2\\)\n"
                "substanceHandleStart\\(handle1, 0\\)\nOutput 1; height 1; $");
    EXPECT_EXIT(failAndExit("substanceContextSetCallback", 1), testing::ExitedWithCode(0),
                "^substanceContextInit\\(context1, device\\)\n"
                "substanceContextSetCallback\\(context1, 2\\) = 7\n"
                "substanceContextRelease\\(context1\\)\n"
                "substanceContextInit\\(context2, device\\)\n"
                "substanceContextSetCallback\\(context2, 2\\)\n"
                "substanceHandleStart\\(handle1, 0\\)\nOutput 1; height 1; $");
    // The package's own linker context comes first, the renderer's second.
    EXPECT_EXIT(failAndExit("substanceLinkerContextInit", 2), testing::ExitedWithCode(0),
                "^substanceContextInit\\(context1, device\\)\n"
                "substanceContextSetCallback\\(context1, 2\\)\n"
                "substanceHandleStart\\(handle1, 0\\)\nOutput 1; height 1; $");
}

#endif

} // namespace SubstanceAir
