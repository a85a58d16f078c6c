// What a host's calls come to in the linker and the engine, call by call.
#include "bridge/Bridge.h"
#include "tests/recording/Recording.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using kvSubstance::Substance;

std::string attribute(const char* name, unsigned int uid) {
    return std::string(" ") + name + "='" + std::to_string(uid) + "'";
}

kv::vector<char> package(unsigned int asmUid, const std::string& outputs, const std::string& inputs,
                         const std::string& tag) {
    const std::string bytes = recording::packageBytes(
        "<sbsdescription" + attribute("asmuid", asmUid) + "><graphs count='1'><graph pkgurl='pkg://" + tag +
            "'><outputs count='2'>" + outputs + "</outputs><inputs count='3'>" + inputs +
            "</inputs></graph></graphs></sbsdescription>",
        tag);
    return kv::vector<char>(bytes.begin(), bytes.end());
}

// The bottom's height feeds the top's bump, both have a seed, and the bottom's Output is left over.
kv::Reference<Substance> makeMaterial() {
    const unsigned int uid = recording::freshUids(10);
    const auto bottom = package(uid,
                                "<output identifier='Output' mipmaps='1'" + attribute("uid", uid + 1) +
                                    "/><output identifier='heightMap'" + attribute("uid", uid + 2) +
                                    "><outputgui label='Height Map'><channels><channel "
                                    "names='height'/></channels></outputgui></output>",
                                "<input identifier='$seed' type='4' default='3'" + attribute("uid", uid + 4) +
                                    attribute("alteroutputs", uid + 2) +
                                    "/><input identifier='scale' type='1' default='1,2'" +
                                    attribute("uid", uid + 3) + attribute("alteroutputs", uid + 2) + "/>",
                                "bottom");
    const auto top = package(
        uid + 0x40000000, "<output identifier='Output' mipmaps='2'" + attribute("uid", uid + 6) + "/>",
        "<input identifier='Bump' type='5'" + attribute("uid", uid + 7) + attribute("alteroutputs", uid + 6) +
            "/><input identifier='$seed' type='4'" + attribute("uid", uid + 9) +
            attribute("alteroutputs", uid + 6) + "/><input identifier='amount' type='0' default='0.5'" +
            attribute("uid", uid + 8) + attribute("alteroutputs", uid + 6) + "/>",
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
    void SetUp() override {
        const auto material = makeMaterial();
        recording::takeTrace();
        kvSubstance::getTextureFromSubstance(material.get());
        contextCalls = recording::takeTrace();
        contextCalls.resize(contextCalls.find("worker: substanceLinkerHandleInit"));
        recording::reset();
    }
    void TearDown() override {
        EXPECT_EQ(recording::misuses(), "");
        EXPECT_EQ(recording::liveTextures(), 0u);
    }

    std::string contextCalls;
};

const char* const linking = R"(worker: substanceLinkerHandleInit(link1, linker1)
worker: substanceLinkerHandlePushAssemblyMemory(link1, "assembly:bottom", 15)
worker: substanceLinkerHandleSetOutputFormat(link1, bottom.Output, 0, 1)
worker: substanceLinkerHandleSetOutputFormat(link1, bottom.heightMap, 0, 0)
worker: substanceLinkerHandlePushAssemblyMemory(link1, "assembly:top", 12)
worker: substanceLinkerHandleSetOutputFormat(link1, top.Output, 0, 2)
worker: substanceLinkerConnectOutputToInput(link1, top.Bump, bottom.heightMap)
worker: substanceLinkerHandleSelectOutputs(link1, 0, bottom.Output)
worker: substanceLinkerFuseInputs(link1, bottom.$seed, top.$seed)
)";

const char* const firstRun = R"(worker: substanceHandleInit(handle1, context1, "linked:bottom+top", 0)
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

TEST_F(TraceTest, LoadingTwoPackages) {
    const auto material = makeMaterial();
    const std::string trace = recording::takeTrace();
    std::string expected;
    for (const std::string number : {"1", "2"}) {
        const std::string linker = "linker" + number;
        const std::string link = "link" + number;
        const size_t push = trace.find("host: substanceLinkerHandlePushAssemblyMemory(" + link);
        expected += "host: substanceLinkerContextInit(" + linker + ", 65537, 19)\n" +
                    "host: substanceLinkerContextSetCallback(" + linker + ", 2, callback)\n" +
                    "host: substanceLinkerContextSetCallback(" + linker + ", 3, callback)\n" +
                    "host: substanceLinkerHandleInit(" + link + ", " + linker + ")\n" +
                    trace.substr(push, trace.find('\n', push) + 1 - push) +
                    "host: substanceLinkerHandleRelease(" + link + ")\n" +
                    "host: substanceLinkerContextRelease(" + linker + ")\n";
    }
    EXPECT_EQ(trace, expected);
}

TEST_F(TraceTest, FirstTextureThenOneChangeThenNone) {
    EXPECT_TRUE(contextCalls.empty() || contextCalls ==
                                            "worker: substanceContextInit(context1, device)\n"
                                            "worker: substanceContextSetCallback(context1, 2, callback)\n")
        << contextCalls;

    const auto material = makeMaterial();
    recording::reset();
    const auto first = kvSubstance::getTextureFromSubstance(material.get());
    EXPECT_EQ(recording::takeTrace(), linking +
                                          std::string("worker: substanceLinkerHandleLink(link1)\n"
                                                      "worker: substanceLinkerHandleRelease(link1)\n") +
                                          firstRun);
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
    EXPECT_EQ(recording::takeTrace(),
              linking + std::string("worker: substanceLinkerHandleLink(link1) = 7\n"));

    recording::reset();
    EXPECT_TRUE(kvSubstance::getTextureFromSubstance(material.get()));
    EXPECT_EQ(recording::takeTrace(), linking +
                                          std::string("worker: substanceLinkerHandleLink(link1)\n"
                                                      "worker: substanceLinkerHandleRelease(link1)\n") +
                                          firstRun);
}

} // namespace
