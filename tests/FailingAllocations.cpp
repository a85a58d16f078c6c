#include "tests/FailingAllocations.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <new>

#if defined(__GLIBC__)
#include <execinfo.h>
#endif

namespace allocations {

namespace {

constexpr long never = std::numeric_limits<long>::max();
constexpr int deepest = 64; // frames of a stack that are kept
constexpr int ownFrames = 3;
constexpr std::size_t ordinary = alignof(std::max_align_t);

std::atomic<long> left{never}; // allocations before the one that fails
std::atomic<bool> isLasting{false};
std::atomic<long> failed{0};
std::atomic<long> living{0};
std::atomic<bool (*)()> exemption{nullptr};

struct Trace {
    Trace* next;
    Trace* previous;
    int depth;
    void* frames[deepest];
};
std::atomic<bool> isTracing{false};
std::mutex tracesMutex;
Trace* traces = nullptr;

// In front of each block.
struct Header {
    Trace* trace;
    std::uint32_t padding; // from the beginning of the memory to the block
    std::uint32_t counts;
};

bool isRefused() {
    if (left.load() == never) return false;
    const long before = left.fetch_sub(1);
    if (before > 0 || (before < 0 && !isLasting)) return false;
    ++failed;
    return true;
}

#if defined(__GLIBC__)
__attribute__((noinline)) Trace* makeTrace() {
    auto* const trace = static_cast<Trace*>(std::malloc(sizeof(Trace)));
    trace->depth = backtrace(trace->frames, deepest);
    const std::lock_guard<std::mutex> lock(tracesMutex);
    trace->previous = nullptr;
    trace->next = traces;
    if (traces) traces->previous = trace;
    traces = trace;
    return trace;
}
#else
Trace* makeTrace() {
    return nullptr;
}
#endif

void endTrace(Trace* trace) {
    const std::lock_guard<std::mutex> lock(tracesMutex);
    (trace->previous ? trace->previous->next : traces) = trace->next;
    if (trace->next) trace->next->previous = trace->previous;
    std::free(trace);
}

#if defined(__GNUC__)
__attribute__((noinline))
#endif
void* allocate(std::size_t size, std::size_t alignment) {
    const auto isExempt = exemption.load();
    const bool counts = !isExempt || !isExempt();
    if (counts && isRefused()) return nullptr;
    const std::size_t padding = alignment > sizeof(Header) ? alignment : sizeof(Header);
    if (size > std::numeric_limits<std::size_t>::max() - padding - alignment) return nullptr;
    const std::size_t whole = (padding + size + alignment - 1) / alignment * alignment;
#if defined(_WIN32)
    void* const memory = _aligned_malloc(whole, alignment);
#else
    void* const memory = std::aligned_alloc(alignment, whole);
#endif
    if (!memory) return nullptr;
    char* const block = static_cast<char*>(memory) + padding;
    if (counts) ++living;
    reinterpret_cast<Header*>(block)[-1] = {counts && isTracing ? makeTrace() : nullptr,
                                            static_cast<std::uint32_t>(padding), counts};
    return block;
}

void* orThrow(void* block) {
    if (!block) throw std::bad_alloc();
    return block;
}

void release(void* block) {
    if (!block) return;
    const Header header = static_cast<Header*>(block)[-1];
    if (header.counts) --living;
    if (header.trace) endTrace(header.trace);
    char* const memory = static_cast<char*>(block) - header.padding;
#if defined(_WIN32)
    _aligned_free(memory);
#else
    std::free(memory);
#endif
}

} // namespace

void fail(long number, Failing how) {
    isLasting = how == Failing::FromThere;
    failed = 0;
    left = number;
}

long stopFailing() {
    left = never;
    return failed;
}

void exempt(bool (*isExempt)()) {
    exemption = isExempt;
}

long alive() {
    return living;
}

void startTracing() {
    const std::lock_guard<std::mutex> lock(tracesMutex);
    for (Trace* trace = traces; trace; trace = trace->next) trace->depth = 0; // of an earlier tracing
    isTracing = true;
}

void stopTracing() {
    isTracing = false;
}

std::vector<Stack> tracedAlive() {
    std::vector<Stack> stacks;
    const std::lock_guard<std::mutex> lock(tracesMutex);
    for (const Trace* trace = traces; trace; trace = trace->next)
        if (trace->depth > ownFrames)
            stacks.emplace_back(trace->frames + ownFrames, trace->frames + trace->depth);
    return stacks;
}

} // namespace allocations

// All forms, since sanitizers bring every one of them along.
#define KV_ALLOCATE(OPERATOR)                                                                                \
    void* OPERATOR(std::size_t size) {                                                                       \
        return orThrow(allocate(size, ordinary));                                                            \
    }                                                                                                        \
    void* OPERATOR(std::size_t size, std::align_val_t alignment) {                                           \
        return orThrow(allocate(size, static_cast<std::size_t>(alignment)));                                 \
    }                                                                                                        \
    void* OPERATOR(std::size_t size, const std::nothrow_t&) noexcept {                                       \
        return allocate(size, ordinary);                                                                     \
    }                                                                                                        \
    void* OPERATOR(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {           \
        return allocate(size, static_cast<std::size_t>(alignment));                                          \
    }
#define KV_RELEASE(OPERATOR)                                                                                 \
    void OPERATOR noexcept {                                                                                 \
        release(block);                                                                                      \
    }

using allocations::allocate;
using allocations::ordinary;
using allocations::orThrow;
using allocations::release;

KV_ALLOCATE(operator new)
KV_ALLOCATE(operator new[])
KV_RELEASE(operator delete(void* block))
KV_RELEASE(operator delete(void* block, std::size_t))
KV_RELEASE(operator delete(void* block, std::align_val_t))
KV_RELEASE(operator delete(void* block, std::size_t, std::align_val_t))
KV_RELEASE(operator delete(void* block, const std::nothrow_t&))
KV_RELEASE(operator delete(void* block, std::align_val_t, const std::nothrow_t&))
KV_RELEASE(operator delete[](void* block))
KV_RELEASE(operator delete[](void* block, std::size_t))
KV_RELEASE(operator delete[](void* block, std::align_val_t))
KV_RELEASE(operator delete[](void* block, std::size_t, std::align_val_t))
KV_RELEASE(operator delete[](void* block, const std::nothrow_t&))
KV_RELEASE(operator delete[](void* block, std::align_val_t, const std::nothrow_t&))
