// The contract of platform/engine.h.
#include "embedded/program/Assembly.h"
#include "platform/engine.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <sstream>
#include <thread>
#include <utility>

using namespace embedded;

namespace {

constexpr unsigned int tintUid = 10, imageUid = 11, resolutionUid = 12;
constexpr unsigned int tintedUid = 20, shownUid = 21, grayUid = 22;

// Outputs: a tint that an input drives, the host's image, and the same tint as gray with levels.
std::vector<unsigned char> testAssembly() {
    ProgramBuilder builder(1, 0);
    const auto tint = builder.input(tintUid, ValueType::Float3, {1, 0, 0});
    const auto image = builder.input(imageUid, ValueType::Image);
    const auto resolution = builder.input(resolutionUid, ValueType::Integer2, {1, 0});
    const auto uniform = builder.node("uniform", {}, {{"colour", {1}}});
    builder.bind(uniform, "value", tint);
    const auto shown = builder.node("imageInput", {}, {{"fallback", {0, 0, 1, 1}}});
    builder.bind(shown, "image", image);
    for (ProgramNode& node : builder.program.nodes) node.resolution.input = resolution;
    builder.output(tintedUid, uniform);
    builder.output(shownUid, shown);
    builder.output(grayUid, uniform, 65, 9);
    builder.output(tintedUid, shown); // a repeated uid: the first output counts
    return encodeAssembly(builder.program);
}

struct Engine {
    Engine() {
        SubstanceDevice device{};
        EXPECT_EQ(substanceContextInit(&context, &device), 0u);
        EXPECT_EQ(substanceContextSetCallback(context, SubstanceCallbackOutputCompleted,
                                              reinterpret_cast<SubstanceCallback>(&Engine::completed)),
                  0u);
        const auto assembly = testAssembly();
        EXPECT_EQ(substanceHandleInit(&handle, context, assembly.data(), assembly.size(), 0), 0u);
    }
    ~Engine() {
        EXPECT_EQ(substanceHandleRelease(handle), handle ? 0u : 1u);
        EXPECT_EQ(substanceContextRelease(context), context ? 0u : 1u);
    }

    void push(std::vector<unsigned int> uids, unsigned int flags = SubstancePushOutputUids) {
        EXPECT_EQ(substanceHandlePushOutputs(handle, flags, uids.data(),
                                             static_cast<unsigned int>(uids.size()), this),
                  0u);
    }
    unsigned int setTint(float red, float green, float blue, unsigned int flags = SubstancePushInput) {
        const float value[] = {red, green, blue};
        return substanceHandlePushSetInput(handle, flags, 0, SubstanceInputFloat3, value, 0);
    }
    // What the run's callbacks said.
    std::string run() {
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

    // Notes "output: size, format, levels: first pixel" and frees the texture, or keeps it.
    void fetch(unsigned int output) {
        SubstanceTexture texture;
        ASSERT_EQ(substanceHandleGetOutputs(handle, 0, output, 1, &texture), 0u);
        const auto* bytes = static_cast<const unsigned char*>(texture.buffer);
        trace << output << ": " << texture.level0Width << 'x' << texture.level0Height << ", "
              << int{texture.pixelFormat} << ", " << int{texture.mipmapCount} << ':';
        for (int i = 0; i < (texture.pixelFormat == 65 ? 1 : 4); ++i) trace << ' ' << int{bytes[i]};
        trace << '\n';
        if (keeps) {
            kept.push_back(texture.buffer);
        } else {
            EXPECT_EQ(substanceContextMemoryFree(context, texture.buffer), 0u);
        }
        EXPECT_NE(substanceHandleGetOutputs(handle, 0, output, 1, &texture), 0u); // once only
        EXPECT_EQ(texture.buffer, nullptr);
    }

    SubstanceContext* context = nullptr;
    SubstanceHandle* handle = nullptr;
    bool fetches = true; // in the callback
    bool keeps = false;
    std::vector<void*> kept;
    std::ostringstream trace;
};

TEST(EngineInterface, refusesNullsAndSetsOutParameters) {
    Engine engine;
    SubstanceDevice device{};
    const auto assembly = testAssembly();
    auto* const staleContext = reinterpret_cast<SubstanceContext*>(&device);
    auto* const staleHandle = reinterpret_cast<SubstanceHandle*>(&device);
    SubstanceContext* context = staleContext;
    SubstanceHandle* handle = staleHandle;
    const unsigned int uid = tintedUid;
    const float value[3] = {};

    EXPECT_NE(substanceContextInit(nullptr, &device), 0u);
    EXPECT_NE(substanceContextInit(&context, nullptr), 0u);
    EXPECT_EQ(context, nullptr);
    EXPECT_NE(substanceContextSetCallback(nullptr, 2, nullptr), 0u);
    EXPECT_NE(substanceContextSetCallback(engine.context, 3, nullptr), 0u);
    EXPECT_NE(substanceContextRelease(nullptr), 0u);
    EXPECT_NE(substanceContextMemoryFree(nullptr, &device), 0u);
    EXPECT_NE(substanceContextMemoryFree(engine.context, nullptr), 0u);
    EXPECT_NE(substanceContextMemoryFree(engine.context, &device), 0u);

    EXPECT_NE(substanceHandleInit(nullptr, engine.context, assembly.data(), assembly.size(), 0), 0u);
    const std::function<unsigned int()> inits[] = {
        [&] { return substanceHandleInit(&handle, nullptr, assembly.data(), assembly.size(), 0); },
        [&] { return substanceHandleInit(&handle, engine.context, nullptr, assembly.size(), 0); },
        [&] { return substanceHandleInit(&handle, engine.context, assembly.data(), assembly.size(), 1); },
        [&] { return substanceHandleInit(&handle, engine.context, assembly.data(), assembly.size() / 2, 0); },
        [&] { return substanceHandleInit(&handle, engine.context, assembly.data(), 0, 0); },
    };
    for (const auto& init : inits) {
        handle = staleHandle;
        EXPECT_NE(init(), 0u);
        EXPECT_EQ(handle, nullptr);
    }

    SubstanceDataDesc desc{9, 9};
    SubstanceInputDesc inputDesc{9, 9, 9};
    SubstanceOutputDesc outputDesc{9, 9};
    SubstanceTexture texture{staleHandle, 1, 1, 1, 1, 1};
    EXPECT_NE(substanceHandleGetDesc(nullptr, &desc), 0u);
    EXPECT_EQ(desc.inputsCount + desc.outputsCount, 0u);
    EXPECT_NE(substanceHandleGetDesc(engine.handle, nullptr), 0u);
    EXPECT_NE(substanceHandleGetInputDesc(engine.handle, 3, &inputDesc), 0u);
    EXPECT_EQ(inputDesc.uid, 0u);
    EXPECT_NE(substanceHandleGetOutputDesc(engine.handle, 4, &outputDesc), 0u);
    EXPECT_EQ(outputDesc.uid, 0u);
    EXPECT_NE(substanceHandleGetOutputs(engine.handle, 0, 0, 1, &texture), 0u); // nothing was computed
    EXPECT_EQ(texture.buffer, nullptr);
    EXPECT_NE(substanceHandleGetOutputs(nullptr, 0, 0, 1, &texture), 0u);
    EXPECT_NE(substanceHandleGetOutputs(engine.handle, 0, 0, 1, nullptr), 0u);
    EXPECT_EQ(substanceHandleGetParentContext(nullptr), nullptr);
    EXPECT_EQ(substanceHandleGetParentContext(engine.handle), engine.context);
    EXPECT_NE(substanceHandlePushSetInput(nullptr, 0, 0, SubstanceInputFloat3, value, 0), 0u);
    EXPECT_NE(substanceHandlePushOutputs(nullptr, 2, &uid, 1, nullptr), 0u);
    EXPECT_NE(substanceHandlePushOutputs(engine.handle, 2, nullptr, 1, nullptr), 0u);
    EXPECT_NE(substanceHandlePushOutputs(engine.handle, 0, &uid, 1, nullptr), 0u); // not uids
    EXPECT_NE(substanceHandleStart(nullptr, 0), 0u);
    EXPECT_NE(substanceHandleRelease(nullptr), 0u);
}

TEST(EngineInterface, describesInputsAndOutputs) {
    Engine engine;
    SubstanceDataDesc desc;
    ASSERT_EQ(substanceHandleGetDesc(engine.handle, &desc), 0u);
    std::ostringstream text;
    for (unsigned int i = 0; i < desc.inputsCount; ++i) {
        SubstanceInputDesc input;
        EXPECT_EQ(substanceHandleGetInputDesc(engine.handle, i, &input), 0u);
        text << input.uid << '/' << input.type << '/' << input.index << ' ';
    }
    for (unsigned int i = 0; i < desc.outputsCount; ++i) {
        SubstanceOutputDesc output;
        EXPECT_EQ(substanceHandleGetOutputDesc(engine.handle, i, &output), 0u);
        text << output.uid << '/' << output.format << ' ';
    }
    EXPECT_EQ(text.str(), "10/2/0 11/5/1 12/8/2 20/0 21/0 22/65 20/0 ");
}

TEST(EngineInterface, computesWhatWasPushedAndKeepsValues) {
    Engine engine;
    EXPECT_EQ(engine.run(), ""); // nothing was asked for
    engine.push({tintedUid, 999, grayUid, tintedUid});
    EXPECT_EQ(engine.run(), "0: 2x1, 0, 1: 255 0 0 255\n2: 2x1, 65, 2: 54\n");
    EXPECT_EQ(engine.run(), ""); // the queue is empty again

    EXPECT_EQ(engine.setTint(0, 1, 1), 0u);
    engine.push({tintedUid});
    EXPECT_EQ(engine.run(), "0: 2x1, 0, 1: 0 255 255 255\n");
    engine.push({tintedUid});
    EXPECT_EQ(engine.run(), "0: 2x1, 0, 1: 0 255 255 255\n");

    // Outputs see the values of the moment they were pushed.
    engine.push({tintedUid});
    EXPECT_EQ(engine.setTint(1, 1, 1), 0u);
    engine.push({tintedUid});
    EXPECT_EQ(engine.run(), "0: 2x1, 0, 1: 0 255 255 255\n0: 2x1, 0, 1: 255 255 255 255\n");
}

TEST(EngineInterface, hintsProduceNothing) {
    Engine engine;
    EXPECT_EQ(engine.setTint(0, 1, 0, SubstancePushInputHint), 0u);
    engine.push({tintedUid}, SubstancePushOutputUidsHint);
    EXPECT_EQ(engine.run(), "");
    engine.push({tintedUid});
    engine.push({tintedUid}, SubstancePushOutputUidsHint);
    EXPECT_EQ(engine.run(), "0: 2x1, 0, 1: 255 0 0 255\n");
}

TEST(EngineInterface, refusesValuesThatDoNotFitAndKeepsTheOldOnes) {
    Engine engine;
    const auto set = [&](unsigned int index, int type, const void* value) {
        return substanceHandlePushSetInput(engine.handle, 0, index, type, value, 0);
    };
    const float value[4] = {0, 1, 0, 1};
    const auto* const unreadable = reinterpret_cast<const void*>(std::uintptr_t{16}); // refused unread
    EXPECT_NE(set(0, SubstanceInputFloat4, unreadable), 0u);
    EXPECT_NE(set(0, SubstanceInputImage, unreadable), 0u);
    EXPECT_NE(set(0, 77, unreadable), 0u);
    EXPECT_NE(set(3, SubstanceInputFloat3, value), 0u);
    EXPECT_NE(set(0, SubstanceInputFloat3, nullptr), 0u);
    EXPECT_NE(substanceHandlePushSetInput(engine.handle, 4, 0, SubstanceInputFloat3, value, 0), 0u);
    engine.push({tintedUid});
    EXPECT_EQ(engine.run(), "0: 2x1, 0, 1: 255 0 0 255\n");

    const int resolution[] = {-3, 1};
    EXPECT_EQ(set(2, SubstanceInputInteger2, resolution), 0u);
    engine.push({tintedUid});
    EXPECT_EQ(engine.run(), "0: 1x2, 0, 1: 255 0 0 255\n"); // clamped
}

TEST(EngineInterface, readsImagesAtOnce) {
    Engine engine;
    unsigned char pixels[8] = {0, 255, 51, 255, 0, 255, 51, 255};
    SubstanceTextureInput image{pixels, 2, 1, 0, 0, 1};
    const auto set = [&](const SubstanceTextureInput* value) {
        return substanceHandlePushSetInput(engine.handle, 0, 1, SubstanceInputImage, value, 0);
    };
    const auto shown = [&] {
        engine.push({shownUid});
        return engine.run();
    };
    EXPECT_EQ(shown(), "1: 2x1, 0, 1: 0 0 255 255\n");
    EXPECT_EQ(set(&image), 0u);
    pixels[2] = 7;
    EXPECT_EQ(shown(), "1: 2x1, 0, 1: 0 255 51 255\n");

    const SubstanceTextureInput refused[] = {{pixels, 2, 1, 1, 0, 1},
                                             {pixels, 2, 1, 0, 1, 1},
                                             {pixels, 0, 1, 0, 0, 1},
                                             {pixels, 2, 16385, 0, 0, 1}};
    for (const auto& record : refused) EXPECT_NE(set(&record), 0u);
    EXPECT_EQ(shown(), "1: 2x1, 0, 1: 0 255 51 255\n");

    image.pixels = nullptr;
    EXPECT_EQ(set(&image), 0u);
    EXPECT_EQ(shown(), "1: 2x1, 0, 1: 0 0 255 255\n");
    image.pixels = pixels;
    EXPECT_EQ(set(&image), 0u);
    EXPECT_EQ(set(nullptr), 0u);
    EXPECT_EQ(shown(), "1: 2x1, 0, 1: 0 0 255 255\n");
}

TEST(EngineInterface, texturesCanBeFetchedLaterOrNever) {
    Engine engine;
    engine.fetches = false;
    engine.push({tintedUid, shownUid});
    EXPECT_EQ(engine.run(), "");
    engine.fetch(1);
    EXPECT_EQ(engine.trace.str(), "1: 2x1, 0, 1: 0 0 255 255\n");
    engine.push({tintedUid});
    EXPECT_EQ(engine.run(), ""); // the first texture gives way to the second, which goes with the handle
}

TEST(EngineInterface, buffersOutliveHandleAndContext) {
    Engine engine;
    engine.keeps = true;
    engine.push({tintedUid, shownUid, grayUid});
    engine.run();
    ASSERT_EQ(engine.kept.size(), 3u);
    auto* const context = engine.context;
    EXPECT_EQ(substanceHandleRelease(std::exchange(engine.handle, nullptr)), 0u);
    EXPECT_EQ(substanceContextRelease(std::exchange(engine.context, nullptr)), 0u);
    EXPECT_NE(substanceContextRelease(context), 0u);
    const auto assembly = testAssembly();
    SubstanceHandle* handle = nullptr;
    EXPECT_NE(substanceHandleInit(&handle, context, assembly.data(), assembly.size(), 0), 0u);
    EXPECT_EQ(static_cast<unsigned char*>(engine.kept[0])[0], 255);
    EXPECT_EQ(substanceContextMemoryFree(context, engine.kept[0]), 0u);
    EXPECT_NE(substanceContextMemoryFree(context, engine.kept[0]), 0u);
    std::thread first([&] { EXPECT_EQ(substanceContextMemoryFree(context, engine.kept[1]), 0u); });
    EXPECT_EQ(substanceContextMemoryFree(context, engine.kept[2]), 0u);
    first.join();
}

TEST(EngineInterface, buffersAreFreedFromOtherThreadsDuringRuns) {
    Engine engine;
    engine.keeps = true;
    for (int run = 0; run < 20; ++run) {
        std::thread freeing([&engine, buffers = std::exchange(engine.kept, {})] {
            for (void* buffer : buffers) EXPECT_EQ(substanceContextMemoryFree(engine.context, buffer), 0u);
        });
        engine.push({tintedUid, shownUid, grayUid});
        engine.run();
        freeing.join();
    }
    for (void* buffer : engine.kept) substanceContextMemoryFree(engine.context, buffer);
}

TEST(EngineInterface, aHandleMayOutliveItsContext) {
    Engine engine;
    EXPECT_EQ(substanceContextRelease(std::exchange(engine.context, nullptr)), 0u);
    engine.push({tintedUid});
    EXPECT_EQ(engine.run(), ""); // computed, but the callback went with the context
}

} // namespace
