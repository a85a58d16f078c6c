// Every allocation of a render fails once: the engine says so, nothing leaks, and the next call works.
#include "embedded/program/Assembly.h"
#include "platform/engine.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr long never = std::numeric_limits<long>::max();
std::atomic<long> allocationsLeft{never};

void* allocate(std::size_t size, std::size_t alignment) {
    if (allocationsLeft.load() != never && --allocationsLeft < 0) throw std::bad_alloc();
    const std::size_t whole = (size + alignment - 1) / alignment * alignment;
#if defined(_WIN32)
    void* const block = _aligned_malloc(whole ? whole : 1, alignment);
#else
    void* const block = std::aligned_alloc(alignment, whole ? whole : alignment);
#endif
    if (!block) throw std::bad_alloc();
    return block;
}

void release(void* block) {
#if defined(_WIN32)
    _aligned_free(block);
#else
    std::free(block);
#endif
}

} // namespace

void* operator new(std::size_t size) {
    return allocate(size, alignof(std::max_align_t));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return allocate(size, alignof(std::max_align_t));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
void operator delete(void* block, std::align_val_t) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    release(block);
}

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
    std::vector<unsigned char> firstBytes() {
        std::vector<unsigned char> bytes;
        for (const unsigned int output : {0u, 1u}) {
            SubstanceTexture texture;
            if (substanceHandleGetOutputs(handle, 0, output, 1, &texture) != 0) return {};
            const auto* const pixels = static_cast<const unsigned char*>(texture.buffer);
            bytes.insert(bytes.end(), pixels, pixels + 32);
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
    std::vector<unsigned char> expected;
    {
        Engine engine;
        ASSERT_TRUE(engine.open(assembly) && engine.render());
        expected = engine.firstBytes();
        ASSERT_EQ(expected.size(), 64u);
    }
    long failures = 0;
    for (bool completed = false; !completed; ++failures) {
        Engine engine;
        allocationsLeft = failures;
        const bool opened = engine.open(assembly);
        const bool rendered = opened && engine.render();
        completed = allocationsLeft >= 0;
        allocationsLeft = never;
        ASSERT_TRUE(rendered || !completed); // what was refused was refused for a reason
        if (!opened) continue;
        EXPECT_TRUE(rendered || engine.render()) << failures;
        EXPECT_EQ(engine.firstBytes(), expected) << failures;
    }
    EXPECT_GT(failures, 100);
}

} // namespace
