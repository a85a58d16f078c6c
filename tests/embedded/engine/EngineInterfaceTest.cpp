// The contract of platform/engine.h.
#include "embedded/program/Assembly.h"
#include "platform/engine.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <sstream>
#include <utility>

using namespace embedded;

namespace {

constexpr unsigned int tintUid = 10, imageUid = 11, resolutionUid = 12;
constexpr unsigned int tintedUid = 20, shownUid = 21, grayUid = 22;

// Outputs: a tint that an input drives, the host's image, and the same tint as gray with levels.
std::vector<unsigned char> testAssembly() {
    ProgramBuilder builder(1, 0);
    Program& program = builder.program;
    program.inputs = {makeInput(tintUid, ValueType::Float3, {1, 0, 0}), makeInput(imageUid, ValueType::Image),
                      makeInput(resolutionUid, ValueType::Integer2, {1, 0})};
    const auto uniform = builder.node("uniform", {}, {{"colour", {1}}});
    const auto shown = builder.node("imageInput", {}, {{"fallback", {0, 0, 1, 1}}});
    parameter(program.nodes[0], "value").input = 0;
    parameter(program.nodes[1], "image").input = 1;
    for (ProgramNode& node : program.nodes) node.resolution.input = 2;
    // Of a repeated uid the first output counts.
    program.outputs = {{tintedUid, uniform, 0, 0},
                       {shownUid, shown, 0, 0},
                       {grayUid, uniform, 65, 9},
                       {tintedUid, shown, 0, 0}};
    return encodeAssembly(program);
}

struct Engine {
    Engine() {
        SubstanceDevice device{};
        EXPECT_EQ(substanceContextInit(&context, &device), 0u);
        auto* const callback = reinterpret_cast<SubstanceCallback>(&Engine::completed);
        EXPECT_EQ(substanceContextSetCallback(context, SubstanceCallbackOutputCompleted, callback), 0u);
        EXPECT_EQ(substanceHandleInit(&handle, context, assembly.data(), assembly.size(), 0), 0u);
    }
    // Buffers outlive handle and context, and belong to the host.
    ~Engine() {
        EXPECT_EQ(substanceHandleRelease(handle), 0u);
        EXPECT_EQ(substanceContextRelease(context), context ? 0u : 1u);
        for (const auto& [buffer, firstByte] : buffers) {
            EXPECT_EQ(buffer[0], firstByte);
            EXPECT_EQ(substanceContextMemoryFree(context, buffer), 0u);
        }
    }

    unsigned int set(unsigned int index, int type, const void* value, unsigned int flags = 0) {
        return substanceHandlePushSetInput(handle, flags, index, type, value, 0);
    }
    void push(const std::vector<unsigned int>& uids, unsigned int flags = SubstancePushOutputUids) {
        const auto count = static_cast<unsigned int>(uids.size());
        EXPECT_EQ(substanceHandlePushOutputs(handle, flags, uids.data(), count, this), 0u);
    }
    // What the callbacks said.
    std::string run(const std::vector<unsigned int>& uids = {}) {
        if (!uids.empty()) push(uids);
        trace.str("");
        EXPECT_EQ(substanceHandleStart(handle, 0), 0u);
        return trace.str();
    }

    static void completed(SubstanceHandle* handle, unsigned int output, void* jobUserData) {
        auto& engine = *static_cast<Engine*>(jobUserData);
        EXPECT_EQ(handle, engine.handle);
        EXPECT_NE(substanceHandleStart(handle, 0), 0u); // not from inside a run
        EXPECT_NE(substanceHandleRelease(handle), 0u);
        if (engine.fetches) engine.fetch(output);
    }

    // Notes "output: size, format, levels: first pixel".
    void fetch(unsigned int output) {
        SubstanceTexture texture;
        ASSERT_EQ(substanceHandleGetOutputs(handle, 0, output, 1, &texture), 0u);
        auto* const bytes = static_cast<unsigned char*>(texture.buffer);
        trace << output << ": " << texture.level0Width << 'x' << texture.level0Height << ", "
              << int{texture.pixelFormat} << ", " << int{texture.mipmapCount} << ':';
        for (int i = 0; i < (texture.pixelFormat == 65 ? 1 : 4); ++i) trace << ' ' << int{bytes[i]};
        trace << '\n';
        buffers[bytes] = bytes[0];
        EXPECT_NE(substanceHandleGetOutputs(handle, 0, output, 1, &texture), 0u); // once only
        EXPECT_EQ(texture.buffer, nullptr);
    }

    const std::vector<unsigned char> assembly = testAssembly();
    SubstanceContext* context = nullptr;
    SubstanceHandle* handle = nullptr;
    bool fetches = true;                             // in the callback
    std::map<unsigned char*, unsigned char> buffers; // with their first bytes
    std::ostringstream trace;
};

TEST(EngineInterface, refusesNullsAndSetsOutParameters) {
    Engine engine;
    auto* const stale = reinterpret_cast<SubstanceHandle*>(&engine);
    auto* context = reinterpret_cast<SubstanceContext*>(&engine);
    EXPECT_NE(substanceContextInit(&context, nullptr), 0u);
    EXPECT_EQ(context, nullptr);
    EXPECT_NE(substanceContextMemoryFree(engine.context, stale), 0u); // not of this context

    const unsigned char* const bytes = engine.assembly.data();
    const std::size_t size = engine.assembly.size();
    for (const std::size_t length : {std::size_t{0}, size / 2}) {
        SubstanceHandle* handle = stale;
        EXPECT_NE(substanceHandleInit(&handle, engine.context, bytes, length, 0), 0u);
        EXPECT_EQ(handle, nullptr);
    }

    SubstanceOutputDesc outputDesc{9, 9};
    SubstanceTexture texture{stale, 1, 1, 1, 1, 1};
    EXPECT_NE(substanceHandleGetOutputDesc(engine.handle, 4, &outputDesc), 0u);
    EXPECT_EQ(outputDesc.uid, 0u);
    EXPECT_NE(substanceHandleGetOutputs(engine.handle, 0, 0, 1, &texture), 0u); // nothing was computed
    EXPECT_EQ(texture.buffer, nullptr);
}

TEST(EngineInterface, computesWhatWasPushedAndKeepsValues) {
    Engine engine;
    const float green[] = {0, 1, 0}, white[] = {1, 1, 1};
    EXPECT_EQ(engine.run({tintedUid, 999, grayUid, tintedUid}),
              "0: 2x1, 0, 1: 255 0 0 255\n2: 2x1, 65, 2: 54\n");
    EXPECT_EQ(engine.run(), ""); // the queue is empty again

    EXPECT_EQ(engine.set(0, SubstanceInputFloat3, green, SubstancePushInputHint), 0u);
    engine.push({tintedUid}, SubstancePushOutputUidsHint);
    EXPECT_EQ(engine.run(), ""); // hints change and produce nothing
    EXPECT_EQ(engine.run({tintedUid}), "0: 2x1, 0, 1: 255 0 0 255\n");

    // Outputs see the values of the moment they were pushed.
    EXPECT_EQ(engine.set(0, SubstanceInputFloat3, green), 0u);
    engine.push({tintedUid});
    EXPECT_EQ(engine.set(0, SubstanceInputFloat3, white), 0u);
    EXPECT_EQ(engine.run({tintedUid}), "0: 2x1, 0, 1: 0 255 0 255\n0: 2x1, 0, 1: 255 255 255 255\n");
    EXPECT_EQ(engine.run({tintedUid}), "0: 2x1, 0, 1: 255 255 255 255\n");
}

TEST(EngineInterface, refusesValuesThatDoNotFitAndKeepsTheOldOnes) {
    Engine engine;
    const auto* const unreadable = reinterpret_cast<const void*>(std::uintptr_t{16}); // refused unread
    for (const int type : {int{SubstanceInputFloat4}, int{SubstanceInputImage}, 77})
        EXPECT_NE(engine.set(0, type, unreadable), 0u) << type;
    EXPECT_NE(engine.set(0, SubstanceInputFloat3, nullptr), 0u);
    EXPECT_EQ(engine.run({tintedUid}), "0: 2x1, 0, 1: 255 0 0 255\n");

    const int resolution[] = {-3, 1};
    EXPECT_EQ(engine.set(2, SubstanceInputInteger2, resolution), 0u);
    EXPECT_EQ(engine.run({tintedUid}), "0: 1x2, 0, 1: 255 0 0 255\n"); // clamped
}

TEST(EngineInterface, readsImagesAtOnce) {
    Engine engine;
    unsigned char pixels[8] = {0, 255, 51, 255, 0, 255, 51, 255};
    SubstanceTextureInput image{pixels, 2, 1, 0, 0, 1};
    const std::string own = "1: 2x1, 0, 1: 0 255 51 255\n", fallback = "1: 2x1, 0, 1: 0 0 255 255\n";
    EXPECT_EQ(engine.run({shownUid}), fallback);
    EXPECT_EQ(engine.set(1, SubstanceInputImage, &image), 0u);
    pixels[2] = 7;
    EXPECT_EQ(engine.run({shownUid}), own);

    const SubstanceTextureInput tooHigh{pixels, 2, 16385, 0, 0, 1};
    EXPECT_NE(engine.set(1, SubstanceInputImage, &tooHigh), 0u);
    EXPECT_EQ(engine.run({shownUid}), own);
    image.pixels = nullptr;
    EXPECT_EQ(engine.set(1, SubstanceInputImage, &image), 0u);
    EXPECT_EQ(engine.run({shownUid}), fallback);
}

TEST(EngineInterface, texturesCanBeFetchedLaterOrNever) {
    Engine engine;
    engine.fetches = false;
    EXPECT_EQ(engine.run({tintedUid, shownUid}), "");
    engine.fetch(1);
    EXPECT_EQ(engine.trace.str(), "1: 2x1, 0, 1: 0 0 255 255\n");
    void* const buffer = engine.buffers.begin()->first;
    EXPECT_EQ(substanceContextMemoryFree(engine.context, buffer), 0u);
    EXPECT_NE(substanceContextMemoryFree(engine.context, buffer), 0u);
    engine.buffers.clear();
    engine.run({tintedUid}); // the first texture gives way to the second, which goes with the handle
}

TEST(EngineInterface, aHandleMayOutliveItsContext) {
    Engine engine;
    EXPECT_EQ(substanceContextRelease(std::exchange(engine.context, nullptr)), 0u);
    EXPECT_EQ(engine.run({tintedUid}), ""); // computed, but the callback went with the context
}

} // namespace
