// What the renderer calls, in which order, when all goes well.
#include "tests/framework/render/RenderFixture.h"

#include <boost/make_shared.hpp>

namespace SubstanceAir {

TEST_F(RendererTest, FirstRenderThenOneChangeThenNothing) {
    const TestPackage package("p");
    TestGraph graph(package);
    recording::reset();

    render({&graph});
    EXPECT_EQ(recording::takeTrace(), R"(worker: substanceLinkerHandleInit(link1, linker1)
worker: substanceLinkerHandlePushAssemblyMemory(link1, "assembly:p", 10)
worker: substanceLinkerHandleSetOutputFormat(link1, p.Output, 0, 1)
worker: substanceLinkerHandleSetOutputFormat(link1, p.height, 32, 0)
worker: substanceLinkerHandleLink(link1)
worker: substanceLinkerHandleRelease(link1)
worker: substanceHandleInit(handle1, context1, "linked:p", 0)
worker: substanceHandleGetDesc(handle1)
worker: substanceHandleGetInputDesc(handle1, 0)
worker: substanceHandleGetInputDesc(handle1, 1)
worker: substanceHandleGetInputDesc(handle1, 2)
worker: substanceHandlePushSetInput(handle1, 0, 2:p.picture, Image, null, 0)
worker: substanceHandlePushSetInput(handle1, 0, 1:p.amount, Float, 0.5, 0)
worker: substanceHandlePushSetInput(handle1, 0, 0:p.$seed, Integer, 3, 0)
worker: substanceHandlePushOutputs(handle1, 2, {p.Output p.height}, 2, job1)
worker: substanceHandlePushSetInput(handle1, 2048, 2:p.picture, Image, null, 0)
worker: substanceHandlePushSetInput(handle1, 2048, 1:p.amount, Float, 0.5, 0)
worker: substanceHandlePushOutputs(handle1, 2050, {p.Output p.height}, 2, job1)
worker: substanceHandleStart(handle1, 0)
worker: outputCompleted(handle1, 0:p.Output, job1)
worker: substanceHandleGetOutputDesc(handle1, 0)
worker: substanceHandleGetOutputs(handle1, 0, 0, 1, buffer1)
worker: substanceHandleGetParentContext(handle1)
worker: outputCompleted(handle1, 1:p.height, job1)
worker: substanceHandleGetOutputDesc(handle1, 1)
worker: substanceHandleGetOutputs(handle1, 0, 1, 1, buffer2)
worker: substanceHandleGetParentContext(handle1)
)");
    EXPECT_EQ(graph.take(), "Output 1; height 1; ");
    EXPECT_EQ(recording::takeTrace(), "host: substanceContextMemoryFree(context1, buffer1)\n"
                                      "host: substanceContextMemoryFree(context1, buffer2)\n");

    graph.amount().setValue(0.75f);
    render({&graph});
    EXPECT_EQ(recording::takeTrace(),
              R"(worker: substanceHandlePushSetInput(handle1, 0, 1:p.amount, Float, 0.75, 0)
worker: substanceHandlePushOutputs(handle1, 2, {p.Output}, 1, job1)
worker: substanceHandlePushSetInput(handle1, 2048, 2:p.picture, Image, null, 0)
worker: substanceHandlePushSetInput(handle1, 2048, 1:p.amount, Float, 0.75, 0)
worker: substanceHandlePushOutputs(handle1, 2050, {p.Output}, 1, job1)
worker: substanceHandleStart(handle1, 0)
worker: outputCompleted(handle1, 0:p.Output, job1)
worker: substanceHandleGetOutputDesc(handle1, 0)
worker: substanceHandleGetOutputs(handle1, 0, 0, 1, buffer3)
worker: substanceHandleGetParentContext(handle1)
)");
    EXPECT_EQ(graph.take(), "Output 1; height 0; ");

    recording::takeTrace();
    graph.amount().setValue(0.75f);
    render({&graph});
    EXPECT_EQ(recording::takeTrace(), "");
}

TEST_F(RendererTest, OutputsThatAreDirtyWithoutAnyChangeAreRendered) {
    const TestPackage package("p");
    TestGraph graph(package);
    graph.height().enabled = false;
    render({&graph});
    EXPECT_EQ(graph.take(), "Output 1; height 0 dirty; ");
    graph.height().enabled = true;
    recording::reset();
    render({&graph});
    EXPECT_EQ(linesWith(recording::takeTrace(), {", 0, 0:", ", 0, 1:", ", 0, 2:", ", 2, {"}),
              "substanceHandlePushOutputs(handle1, 2, {p.height}, 1, job1)\n");
    EXPECT_EQ(graph.take(), "Output 0; height 1; ");
}

TEST_F(RendererTest, StateKeyFollowsTheOnlyGraphOfAState) {
    const TestPackage package("p");
    TestGraph graph(package);
    render({&graph});
    graph.take();
    recording::reset();
    graph.seed().setValue(9);
    render({&graph});
    EXPECT_EQ(linesWith(recording::takeTrace(), {"Link(", "SetInput(handle1, 0,"}),
              "substanceHandlePushSetInput(handle1, 0, 0:p.$seed, Integer, 9, 0)\n");

    // A second graph with the same key shares the state, which from then on stays with the key it has.
    TestGraph second(package);
    second.seed().setValue(9);
    render({&second});
    second.seed().setValue(10);
    recording::reset();
    render({&second});
    const std::string trace = recording::takeTrace();
    EXPECT_EQ(linesWith(trace, {"Link(", "Start("}), "substanceLinkerHandleLink(link1)\n"
                                                     "substanceHandleStart(handle1, 0)\n");
    EXPECT_EQ(graph.take() + second.take(), "Output 1; height 1; Output 2; height 2; ");
}

TEST_F(RendererTest, JobsOfOnePackageMergeAndTheNewerWins) {
    const TestPackage package("p");
    TestGraph older(package), newer(package);
    older.amount().setValue(0.1f);
    newer.amount().setValue(0.9f);
    newer.output().enabled = false;
    recording::reset();
    render({&older, &newer});
    EXPECT_EQ(linesWith(recording::takeTrace(), {", 0, 1:p.amount", ", 2, {", "Start("}),
              "substanceHandlePushSetInput(handle1, 0, 1:p.amount, Float, 0.9, 0)\n"
              "substanceHandlePushOutputs(handle1, 2, {p.Output p.height}, 2, job1)\n"
              "substanceHandleStart(handle1, 0)\n");
    EXPECT_EQ(older.take() + newer.take(), "Output 1; height 0 dirty; Output 0 dirty; height 1; ");
}

TEST_F(RendererTest, PackagesRenderInStatesOfTheirOwn) {
    const TestPackage first("a"), second("b");
    TestGraph one(first), other(second);
    recording::reset();
    render({&one, &other});
    EXPECT_EQ(linesWith(recording::takeTrace(), {"Link(", "HandleInit(handle", ", 2, {", "Start("}),
              R"(substanceLinkerHandleLink(link1)
substanceHandleInit(handle1, context1, "linked:a", 0)
substanceHandlePushOutputs(handle1, 2, {a.Output a.height}, 2, job1)
substanceHandleStart(handle1, 0)
substanceLinkerHandleLink(link2)
substanceHandleInit(handle2, context1, "linked:b", 0)
substanceHandlePushOutputs(handle2, 2, {b.Output b.height}, 2, job1)
substanceHandleStart(handle2, 0)
)");
    EXPECT_EQ(one.take() + other.take(), "Output 1; height 1; Output 1; height 1; ");
}

TEST_F(RendererTest, ImagesArePushedAsTheyWereWhenTheJobWasMade) {
    const TestPackage package("p");
    TestGraph graph(package);
    {
        const std::unique_ptr<unsigned char[]> pixels(new unsigned char[8]{1, 2, 3, 4, 5, 6, 7, 8});
        SubstanceTextureInput image{pixels.get(), 2, 1, 0, 0, 1};
        graph.picture().setImage(boost::make_shared<InputImage>(image));
        recording::reset();
        pushJobs({&graph});
        graph.picture().reset();
        render({});
    }
    EXPECT_EQ(linesWith(recording::takeTrace(), {"picture"}),
              "substanceHandlePushSetInput(handle1, 0, 2:p.picture, Image, image 2x1 format 0 pixels "
              "0102030405060708, 0)\n"
              "substanceHandlePushSetInput(handle1, 2048, 2:p.picture, Image, image 2x1 format 0 pixels "
              "0102030405060708, 0)\n");
    EXPECT_EQ(graph.take(), "Output 1 dirty; height 1 dirty; ");
    render({&graph});
    EXPECT_EQ(linesWith(recording::takeTrace(), {", 0, 2:p.picture"}),
              "substanceHandlePushSetInput(handle1, 0, 2:p.picture, Image, null, 0)\n");
    graph.take();
}

TEST_F(RendererTest, TheEnginesOwnListOfInputsCounts) {
    const TestPackage package("p");
    TestGraph graph(package);
    const unsigned int amount = graph.amount().desc.uid;
    recording::reset();
    const unsigned int picture = graph.picture().desc.uid;
    recording::setEngineDescription({{picture, Image}, {picture, Image}, {amount, Float}, {amount, Float}},
                                    {{graph.height().desc.uid, 0, 1}});
    render({&graph});
    EXPECT_EQ(linesWith(recording::takeTrace(), {"SetInput(handle1, 0,", "outputCompleted"}),
              R"(substanceHandlePushSetInput(handle1, 0, 0:p.picture, Image, null, 0)
substanceHandlePushSetInput(handle1, 0, 2:p.amount, Float, 0.5, 0)
outputCompleted(handle1, 0:p.height, job1)
)");
    EXPECT_EQ(graph.height().grabResult()->texture.level0Width, 4);
}

TEST_F(RendererTest, AGraphOutsideAPackageIsNotRendered) {
    const TestPackage package("p");
    const GraphDesc copy(package.desc.graphs().at(0));
    GraphInstance graph(copy);
    recording::takeTrace();
    render({&graph});
    EXPECT_EQ(recording::takeTrace(), "");
    EXPECT_TRUE(graph.outputs[0]->dirty);
}

TEST_F(RendererTest, ResultsOutliveTheirGraphAndPackage) {
    std::unique_ptr<RenderResult> result;
    {
        const TestPackage package("p");
        TestGraph graph(package);
        render({&graph});
        result = graph.output().grabResult();
        recording::reset();
    }
    EXPECT_EQ(recording::takeTrace(), "host: substanceContextMemoryFree(context1, buffer2)\n")
        << "of the height";
    EXPECT_EQ(static_cast<const unsigned char*>(result->texture.buffer)[31] + 0,
              static_cast<const unsigned char*>(result->texture.buffer)[7] + 0);
    result.reset();
}

} // namespace SubstanceAir
