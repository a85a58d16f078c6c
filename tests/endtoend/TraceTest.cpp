// What a host's calls come to in the linker and the engine, call by call.
#include "tests/recording/Host.h"

namespace recording {

const std::string linking = R"(worker: substanceLinkerHandleInit(link1, linker1)
worker: substanceLinkerHandlePushAssemblyMemory(link1, "assembly:bottom", 15)
worker: substanceLinkerHandleSetOutputFormat(link1, bottom.Output, 0, 1)
worker: substanceLinkerHandleSetOutputFormat(link1, bottom.relief, 0, 0)
worker: substanceLinkerHandlePushAssemblyMemory(link1, "assembly:top", 12)
worker: substanceLinkerHandleSetOutputFormat(link1, top.before, 0, 0)
worker: substanceLinkerHandleSetOutputFormat(link1, top.Output, 0, 2)
worker: substanceLinkerConnectOutputToInput(link1, top.Bump, bottom.relief)
worker: substanceLinkerHandleSelectOutputs(link1, 0, bottom.Output)
worker: substanceLinkerFuseInputs(link1, bottom.$seed, top.$seed)
)";

const std::string firstPushes = R"(worker: substanceLinkerHandleLink(link1)
worker: substanceLinkerHandleRelease(link1)
worker: substanceHandleInit(handle1, context1, "linked:bottom+top", 0)
worker: substanceHandleGetDesc(handle1)
worker: substanceHandleGetInputDesc(handle1, 0)
worker: substanceHandleGetInputDesc(handle1, 1)
worker: substanceHandleGetInputDesc(handle1, 2)
worker: substanceHandlePushSetInput(handle1, 0, 1:bottom.scale, Float, 1, 0)
worker: substanceHandlePushSetInput(handle1, 0, 0:bottom.$seed, Integer, 3, 0)
worker: substanceHandlePushSetInput(handle1, 0, 2:top.amount, Float, 0.5, 0)
worker: substanceHandlePushOutputs(handle1, 2, {top.before top.Output}, 2, job1)
worker: substanceHandlePushSetInput(handle1, 2048, 1:bottom.scale, Float, 1, 0)
worker: substanceHandlePushSetInput(handle1, 2048, 2:top.amount, Float, 0.5, 0)
worker: substanceHandlePushOutputs(handle1, 2050, {top.before top.Output}, 2, job1)
)";

const std::string run = R"(worker: substanceHandleStart(handle1, 0)
worker: outputCompleted(handle1, 2:top.before, job1)
worker: substanceHandleGetOutputDesc(handle1, 2)
worker: substanceHandleGetOutputs(handle1, 0, 2, 1, buffer1)
worker: substanceHandleGetParentContext(handle1)
worker: outputCompleted(handle1, 3:top.Output, job1)
worker: substanceHandleGetOutputDesc(handle1, 3)
worker: substanceHandleGetOutputs(handle1, 0, 3, 1, buffer2)
worker: substanceHandleGetParentContext(handle1)
host: substanceContextMemoryFree(context1, buffer1)
host: substanceContextMemoryFree(context1, buffer2)
)";

TEST_F(HostTest, FirstTextureThenOneChangeThenNone) {
    const auto material = loadMaterial();
    reset();
    const Image first = hosting::render(material);
    EXPECT_EQ(takeTrace(), "worker: substanceContextInit(context1, device)\n"
                           "worker: substanceContextSetCallback(context1, 2)\n" +
                               linking + firstPushes + run);
    ASSERT_TRUE(first);

    reset();
    setValue(material, "scale", 4);
    const Image second = hosting::render(material);
    EXPECT_EQ(takeTrace(), R"(worker: substanceHandlePushSetInput(handle1, 0, 1:bottom.scale, Float, 4, 0)
worker: substanceHandlePushOutputs(handle1, 2, {top.before top.Output}, 2, job1)
worker: substanceHandlePushSetInput(handle1, 2048, 1:bottom.scale, Float, 4, 0)
worker: substanceHandlePushSetInput(handle1, 2048, 2:top.amount, Float, 0.5, 0)
worker: substanceHandlePushOutputs(handle1, 2050, {top.before top.Output}, 2, job1)
)" + run);
    EXPECT_NE(first.get(), second.get());

    setValue(material, "scale", 4);
    EXPECT_EQ(hosting::render(material).get(), second.get());
    EXPECT_EQ(takeTrace(), "");
}

TEST_F(HostTest, FailedLinkThenAGoodCall) {
    hosting::render(loadMaterial()); // makes the contexts
    const auto material = loadMaterial();
    reset();
    fail("substanceLinkerHandleLink");
    EXPECT_FALSE(hosting::render(material));
    EXPECT_EQ(takeTrace(), linking + "worker: substanceLinkerHandleLink(link1) = 7\n");

    reset();
    EXPECT_TRUE(hosting::render(material));
    EXPECT_EQ(takeTrace(), linking + firstPushes + run);
}

} // namespace recording
