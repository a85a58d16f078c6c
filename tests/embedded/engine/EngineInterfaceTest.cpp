// What the engine owes beyond what the judge of engines asks of each.
#include "embedded/program/Assembly.h"
#include "platform/engine.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <gtest/gtest.h>

#include <sstream>
#include <utility>

using namespace embedded;

namespace {

constexpr unsigned int tintedUid = 20, shownUid = 21, grayUid = 22;

// Outputs: a tint that an input drives, the host's image, and the same tint as gray with levels.
std::vector<unsigned char> testAssembly() {
    Program program;
    program.inputs = {makeInput(10, ValueType::Float3, {1, 0, 0}), makeInput(11, ValueType::Image),
                      makeInput(12, ValueType::Integer2, {1, 0})};
    program.nodes = {makeNode("uniform", {}, {{"colour", {1}}}),
                     makeNode("imageInput", {}, {{"fallback", {0, 0, 1, 1}}})};
    parameter(program.nodes[0], "value").input = 0;
    parameter(program.nodes[1], "image").input = 1;
    for (ProgramNode& node : program.nodes) node.resolution.input = 2;
    // Of a repeated uid the first output counts.
    program.outputs = {{tintedUid, 0, 0, 0}, {shownUid, 1, 0, 0}, {grayUid, 0, 65, 9}, {tintedUid, 1, 0, 0}};
    return encodeAssembly(program);
}

struct Engine {
    Engine() {
        SubstanceDevice device{};
        EXPECT_EQ(substanceContextInit(&context, &device), 0u);
        auto* const callback = reinterpret_cast<SubstanceCallback>(&Engine::fetch);
        EXPECT_EQ(substanceContextSetCallback(context, SubstanceCallbackOutputCompleted, callback), 0u);
        EXPECT_EQ(substanceHandleInit(&handle, context, assembly.data(), assembly.size(), 0), 0u);
    }
    ~Engine() {
        EXPECT_EQ(substanceHandleRelease(handle), 0u);
        EXPECT_EQ(substanceContextRelease(context), context ? 0u : 1u);
    }

    unsigned int set(unsigned int index, int type, const void* value) {
        return substanceHandlePushSetInput(handle, 0, index, type, value, 0);
    }
    // For each output "output: size, format, levels: first pixel".
    std::string run(const std::vector<unsigned int>& uids) {
        const auto count = static_cast<unsigned int>(uids.size());
        EXPECT_EQ(substanceHandlePushOutputs(handle, SubstancePushOutputUids, uids.data(), count, this), 0u);
        trace.str("");
        EXPECT_EQ(substanceHandleStart(handle, 0), 0u);
        return trace.str();
    }

    static void fetch(SubstanceHandle* handle, unsigned int output, void* jobUserData) {
        auto& engine = *static_cast<Engine*>(jobUserData);
        EXPECT_NE(substanceHandleStart(handle, 0), 0u); // not from inside a run
        SubstanceTexture texture;
        ASSERT_EQ(substanceHandleGetOutputs(handle, 0, output, 1, &texture), 0u);
        const auto* const bytes = static_cast<unsigned char*>(texture.buffer);
        engine.trace << output << ": " << texture.level0Width << 'x' << texture.level0Height << ", "
                     << int{texture.pixelFormat} << ", " << int{texture.mipmapCount} << ':';
        for (int i = 0; i < (texture.pixelFormat == 65 ? 1 : 4); ++i) engine.trace << ' ' << int{bytes[i]};
        engine.trace << '\n';
        EXPECT_EQ(substanceContextMemoryFree(engine.context, texture.buffer), 0u);
        EXPECT_NE(substanceContextMemoryFree(engine.context, texture.buffer), 0u); // once only
    }

    const std::vector<unsigned char> assembly = testAssembly();
    SubstanceContext* context = nullptr;
    SubstanceHandle* handle = nullptr;
    std::ostringstream trace;
};

TEST(EngineInterface, computesEachOutputOnceAndClampsResolutions) {
    Engine engine;
    EXPECT_EQ(engine.run({tintedUid, 999, grayUid, tintedUid}),
              "0: 2x1, 0, 1: 255 0 0 255\n2: 2x1, 65, 2: 54\n");
    const int resolution[] = {-3, 1};
    EXPECT_EQ(engine.set(2, SubstanceInputInteger2, resolution), 0u);
    EXPECT_EQ(engine.run({tintedUid}), "0: 1x2, 0, 1: 255 0 0 255\n");
}

TEST(EngineInterface, refusesValuesThatDoNotFitAndKeepsTheOldOnes) {
    Engine engine;
    unsigned char pixels[8] = {0, 255, 51, 255, 0, 255, 51, 255};
    const SubstanceTextureInput image{pixels, 2, 1, 0, 0, 1}, tooHigh{pixels, 2, 16385, 0, 0, 1};
    EXPECT_EQ(engine.run({shownUid}), "1: 2x1, 0, 1: 0 0 255 255\n"); // what an image falls back to
    EXPECT_EQ(engine.set(1, SubstanceInputImage, &image), 0u);
    EXPECT_NE(engine.set(1, SubstanceInputImage, &tooHigh), 0u);
    EXPECT_NE(engine.set(0, 77, pixels), 0u);
    EXPECT_NE(engine.set(0, SubstanceInputFloat3, nullptr), 0u);
    EXPECT_EQ(engine.run({tintedUid, shownUid}), "0: 2x1, 0, 1: 255 0 0 255\n1: 2x1, 0, 1: 0 255 51 255\n");
}

TEST(EngineInterface, aHandleMayOutliveItsContext) {
    Engine engine;
    EXPECT_EQ(substanceContextRelease(std::exchange(engine.context, nullptr)), 0u);
    EXPECT_EQ(engine.run({tintedUid}), ""); // computed, but the callback went with the context
}

} // namespace
