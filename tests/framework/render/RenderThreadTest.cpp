// The render thread, and the beginning of a process.
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

#ifdef GTEST_HAS_DEATH_TEST // this needs a process in which nothing was rendered before

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
    const char* const good = "substanceContextInit\\(context1, device\\)\n"
                             "substanceContextSetCallback\\(context1, 2\\)\n"
                             "substanceHandleStart\\(handle1, 0\\)\nOutput 1; height 1; $";
    const struct {
        const char* function;
        unsigned int call;
        std::string trace;
    } cases[] = {
        {"substanceContextInit", 1, std::string("^substanceContextInit\\(null, device\\) = 7\n") + good},
        {"substanceContextSetCallback", 1,
         "^substanceContextInit\\(context1, device\\)\n"
         "substanceContextSetCallback\\(context1, 2\\) = 7\n"
         "substanceContextRelease\\(context1\\)\n"
         "substanceContextInit\\(context2, device\\)\n"},
        // The package's own linker context comes first, the renderer's second.
        {"substanceLinkerContextInit", 2, std::string("^") + good},
    };
    for (const auto& [function, call, trace] : cases)
        EXPECT_EXIT(failAndExit(function, call), testing::ExitedWithCode(0), trace);
}

#endif

} // namespace SubstanceAir
