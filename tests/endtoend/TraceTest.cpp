// What a host's calls come to in the linker and the engine, call by call.
#include "bridge/Bridge.h"
#include "tests/recording/Recording.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using kvSubstance::Substance;

// The bottom's height feeds the top's bump, both have a seed, and the bottom's Output is left over.
kv::Reference<Substance> makeMaterial() {
    const auto package = [](const char* xml, const std::string& tag) {
        const std::string bytes = recording::packageBytes(recording::withFreshUids(xml), tag);
        return kv::vector<char>(bytes.begin(), bytes.end());
    };
    const auto bottom = package(R"(<sbsdescription asmuid='#0'><graphs count='1'><graph pkgurl='pkg://bottom'>
        <outputs count='2'><output uid='#1' identifier='Output' mipmaps='1'/>
            <output uid='#2' identifier='heightMap'><outputgui label='Height Map'>
                <channels><channel names='height'/></channels></outputgui></output></outputs>
        <inputs count='2'><input uid='#4' identifier='$seed' type='4' default='3' alteroutputs='#2'/>
            <input uid='#3' identifier='scale' type='1' default='1,2' alteroutputs='#2'/></inputs>
        </graph></graphs></sbsdescription>)",
                                "bottom");
    const auto top = package(R"(<sbsdescription asmuid='#0'><graphs count='1'><graph pkgurl='pkg://top'>
        <outputs count='1'><output uid='#1' identifier='Output' mipmaps='2'/></outputs>
        <inputs count='3'><input uid='#2' identifier='Bump' type='5' alteroutputs='#1'/>
            <input uid='#4' identifier='$seed' type='4' alteroutputs='#1'/>
            <input uid='#3' identifier='amount' type='0' default='0.5' alteroutputs='#1'/></inputs>
        </graph></graphs></sbsdescription>)",
                             "top");
    return kvSubstance::createSubstance(bottom, top);
}

void setValue(const kv::Reference<Substance>& material, const char* identifier, float value) {
    kvSubstance::SubstanceInput* const input = material->getInput(identifier);
    ASSERT_NE(input, nullptr);
    input->setValueF(value, 0);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, input);
}

class TraceTest : public testing::Test {
protected:
    // The first material of a process makes the renderer's linker context, its first texture the engine's.
    void SetUp() override { kvSubstance::getTextureFromSubstance(makeMaterial().get()); }
    void TearDown() override {
        EXPECT_EQ(recording::misuses(), "");
        EXPECT_EQ(recording::liveTextures(), 0u);
    }
};

const std::string linking = R"(worker: substanceLinkerHandleInit(link1, linker1)
worker: substanceLinkerHandlePushAssemblyMemory(link1, "assembly:bottom", 15)
worker: substanceLinkerHandleSetOutputFormat(link1, bottom.Output, 0, 1)
worker: substanceLinkerHandleSetOutputFormat(link1, bottom.heightMap, 0, 0)
worker: substanceLinkerHandlePushAssemblyMemory(link1, "assembly:top", 12)
worker: substanceLinkerHandleSetOutputFormat(link1, top.Output, 0, 2)
worker: substanceLinkerConnectOutputToInput(link1, top.Bump, bottom.heightMap)
worker: substanceLinkerHandleSelectOutputs(link1, 0, bottom.Output)
worker: substanceLinkerFuseInputs(link1, bottom.$seed, top.$seed)
)";

const std::string firstRun = R"(worker: substanceLinkerHandleLink(link1)
worker: substanceLinkerHandleRelease(link1)
worker: substanceHandleInit(handle1, context1, "linked:bottom+top", 0)
worker: substanceHandleGetDesc(handle1)
worker: substanceHandleGetInputDesc(handle1, 0)
worker: substanceHandleGetInputDesc(handle1, 1)
worker: substanceHandleGetInputDesc(handle1, 2)
worker: substanceHandlePushSetInput(handle1, 0, 1:bottom.scale, Float2, 1,2, 0)
worker: substanceHandlePushSetInput(handle1, 0, 0:bottom.$seed, Integer, 3, 0)
worker: substanceHandlePushSetInput(handle1, 0, 2:top.amount, Float, 0.5, 0)
worker: substanceHandlePushOutputs(handle1, 2, {top.Output}, 1, job1)
worker: substanceHandlePushSetInput(handle1, 2048, 1:bottom.scale, Float2, 1,2, 0)
worker: substanceHandlePushSetInput(handle1, 2048, 2:top.amount, Float, 0.5, 0)
worker: substanceHandlePushOutputs(handle1, 2050, {top.Output}, 1, job1)
worker: substanceHandleStart(handle1, 0)
worker: outputCompleted(handle1, 2:top.Output, job1)
worker: substanceHandleGetOutputDesc(handle1, 2)
worker: substanceHandleGetOutputs(handle1, 0, 2, 1, buffer1)
worker: substanceHandleGetParentContext(handle1)
host: substanceContextMemoryFree(context1, buffer1)
)";

TEST_F(TraceTest, FirstTextureThenOneChangeThenNone) {
    const auto material = makeMaterial();
    recording::reset();
    const auto first = kvSubstance::getTextureFromSubstance(material.get());
    EXPECT_EQ(recording::takeTrace(), linking + firstRun);
    ASSERT_TRUE(first);

    setValue(material, "scale", 4);
    const auto second = kvSubstance::getTextureFromSubstance(material.get());
    EXPECT_EQ(recording::takeTrace(),
              R"(worker: substanceHandlePushSetInput(handle1, 0, 1:bottom.scale, Float2, 4,2, 0)
worker: substanceHandlePushOutputs(handle1, 2, {top.Output}, 1, job1)
worker: substanceHandlePushSetInput(handle1, 2048, 1:bottom.scale, Float2, 4,2, 0)
worker: substanceHandlePushSetInput(handle1, 2048, 2:top.amount, Float, 0.5, 0)
worker: substanceHandlePushOutputs(handle1, 2050, {top.Output}, 1, job1)
worker: substanceHandleStart(handle1, 0)
worker: outputCompleted(handle1, 2:top.Output, job1)
worker: substanceHandleGetOutputDesc(handle1, 2)
worker: substanceHandleGetOutputs(handle1, 0, 2, 1, buffer2)
worker: substanceHandleGetParentContext(handle1)
host: substanceContextMemoryFree(context1, buffer2)
)");
    EXPECT_NE(first.get(), second.get());

    setValue(material, "scale", 4);
    const auto third = kvSubstance::getTextureFromSubstance(material.get());
    EXPECT_EQ(recording::takeTrace(), "");
    EXPECT_EQ(third.get(), second.get());
}

TEST_F(TraceTest, FailedLinkThenAGoodCall) {
    const auto material = makeMaterial();
    recording::reset();
    recording::fail("substanceLinkerHandleLink");
    EXPECT_FALSE(kvSubstance::getTextureFromSubstance(material.get()));
    EXPECT_EQ(recording::takeTrace(), linking + "worker: substanceLinkerHandleLink(link1) = 7\n");

    recording::reset();
    EXPECT_TRUE(kvSubstance::getTextureFromSubstance(material.get()));
    EXPECT_EQ(recording::takeTrace(), linking + firstRun);
}

} // namespace
