// What comes of runs, whatever engine computes.
#include "tests/framework/render/RenderFixture.h"

namespace SubstanceAir {

TEST_F(RendererTest, EveryOutputThatIsDueArrivesOnce) {
    const auto renderAndTake = [this] {
        render({&graph});
        return graph.take();
    };
    EXPECT_EQ(renderAndTake(), "Output 1; height 1; ");
    EXPECT_EQ(renderAndTake(), "Output 0; height 0; ");
    graph.amount().setValue(0.75f); // alters one
    EXPECT_EQ(renderAndTake(), "Output 1; height 0; ");
    graph.height().enabled = false;
    graph.seed().setValue(4); // alters both
    EXPECT_EQ(renderAndTake(), "Output 1; height 0 dirty; ");
    graph.height().enabled = true;
    EXPECT_EQ(renderAndTake(), "Output 0; height 1; ");
}

TEST_F(RendererTest, ARequestBeforeTheStartIsServed) {
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

} // namespace SubstanceAir
