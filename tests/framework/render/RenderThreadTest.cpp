// The render thread.
#include "tests/framework/render/RenderFixture.h"
#include "tests/recording/Recording.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <thread>

namespace SubstanceAir {

using recording::Start;

// Does what has to wait for the end of the run while the next start is under way.
class DuringTheNextRun {
public:
    explicit DuringTheNextRun(const std::function<void()>& action) {
        recording::onNextStart([this, action](const Start& start) {
            end = std::async(std::launch::async, [this, action] {
                isBegun = true;
                action();
            });
            while (!isBegun) std::this_thread::yield();
            for (int i = 0; i < 2000; ++i) std::this_thread::yield();
            EXPECT_EQ(end.wait_for(std::chrono::seconds(0)), std::future_status::timeout) << "did not wait";
            return start.reportAll();
        });
    }

private:
    std::atomic<bool> isBegun{false};
    std::future<void> end; // of the action, for which its own end waits
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

} // namespace SubstanceAir
