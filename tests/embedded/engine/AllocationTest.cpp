// Every allocation of a render fails once: the engine says so, nothing leaks, and the next call works.
#include "embedded/program/Assembly.h"
#include "platform/engine.h"
#include "tests/FailingAllocations.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

namespace {

using namespace embedded;

std::vector<unsigned char> graph() {
    ProgramBuilder builder(5, 5);
    const auto noise = builder.node("fbm");
    const auto copies = builder.node("scatter", {noise});
    const auto soft = builder.node("blur", {copies}, {{"sigma", {0.2}}});
    const auto light = builder.node("ambientOcclusion", {soft}, {{"radius", {0.25}}});
    const auto colours = builder.node("gradientMap", {light});
    const auto turned = builder.node("transform", {colours}, {{"repeats", {4}}});
    builder.program.outputs = {{1, turned, 32, 3}, {2, light, 65, 1}};
    return encodeAssembly(builder.program);
}

struct Engine {
    bool open(const std::vector<unsigned char>& assembly) {
        SubstanceDevice device{};
        return substanceContextInit(&context, &device) == 0 &&
               substanceHandleInit(&handle, context, assembly.data(), assembly.size(), 0) == 0;
    }
    bool render() {
        constexpr unsigned int uids[] = {1, 2};
        return substanceHandlePushOutputs(handle, SubstancePushOutputUids, uids, 2, nullptr) == 0 &&
               substanceHandleStart(handle, 0) == 0;
    }
    std::string firstBytes() {
        std::string bytes;
        for (const unsigned int output : {0u, 1u}) {
            SubstanceTexture texture;
            if (substanceHandleGetOutputs(handle, 0, output, 1, &texture) != 0) return "";
            bytes.append(static_cast<const char*>(texture.buffer), 32);
            substanceContextMemoryFree(context, texture.buffer);
        }
        return bytes;
    }
    ~Engine() {
        EXPECT_EQ(handle ? substanceHandleRelease(handle) : 0u, 0u);
        EXPECT_EQ(context ? substanceContextRelease(context) : 0u, 0u);
    }

    SubstanceContext* context = nullptr;
    SubstanceHandle* handle = nullptr;
};

TEST(Allocation, everyFailureIsAStatusAndTheNextCallWorks) {
    const auto assembly = graph();
    const std::string expected = [&] {
        Engine engine;
        EXPECT_TRUE(engine.open(assembly) && engine.render());
        return engine.firstBytes();
    }();
    ASSERT_EQ(expected.size(), 64u);
    long failures = 0;
    for (bool completed = false; !completed; ++failures) {
        Engine engine;
        allocations::fail(failures, allocations::Failing::Once);
        const bool opened = engine.open(assembly);
        const bool rendered = opened && engine.render();
        completed = allocations::stopFailing() == 0;
        ASSERT_TRUE(rendered || !completed); // what was refused was refused for a reason
        if (!opened) continue;
        EXPECT_TRUE(rendered || engine.render()) << failures;
        EXPECT_EQ(engine.firstBytes(), expected) << failures;
    }
    EXPECT_GT(failures, 100);
}

} // namespace
