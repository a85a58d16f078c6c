#include "tests/FailingAllocations.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>

namespace allocations {

namespace {

constexpr long never = std::numeric_limits<long>::max();
constexpr std::size_t ordinary = alignof(std::max_align_t);

std::atomic<long> left{never}; // allocations before the one that fails
std::atomic<bool> isLasting{false};
std::atomic<long> failed{0};
std::atomic<long> living{0};
std::atomic<std::size_t> held{0}; // bytes
std::atomic<std::size_t> mostHeld{0};
std::atomic<std::size_t> heldBefore{0};
std::atomic<bool (*)()> exemption{nullptr};

// In front of each block.
struct Header {
    void* memory; // which the block is a part of
    std::size_t size;
    bool counts;
};

bool isRefused() {
    if (left.load() == never) return false;
    const long before = left.fetch_sub(1);
    if (before > 0 || (before < 0 && !isLasting)) return false;
    ++failed;
    return true;
}

void addToCounts(std::size_t size) {
    ++living;
    const std::size_t now = held += size;
    for (std::size_t most = mostHeld; most < now && !mostHeld.compare_exchange_weak(most, now);) {
    }
}

void* allocate(std::size_t size, std::size_t alignment) {
    const auto isExempt = exemption.load();
    const bool counts = !isExempt || !isExempt();
    if (counts && isRefused()) return nullptr;
    const std::size_t extra = sizeof(Header) + alignment;
    if (size > std::numeric_limits<std::size_t>::max() - extra) return nullptr;
    void* const memory = std::malloc(size + extra);
    if (!memory) return nullptr;
    char* const end = static_cast<char*>(memory) + extra;
    char* const block = end - reinterpret_cast<std::uintptr_t>(end) % alignment;
    reinterpret_cast<Header*>(block)[-1] = {memory, size, counts};
    if (counts) addToCounts(size);
    return block;
}

void* orThrow(void* block) {
    if (!block) throw std::bad_alloc();
    return block;
}

void release(void* block) {
    if (!block) return;
    const Header header = static_cast<Header*>(block)[-1];
    if (header.counts) {
        --living;
        held -= header.size;
    }
    std::free(header.memory);
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

void startPeak() {
    heldBefore = held.load();
    mostHeld = held.load();
}

std::size_t peak() {
    return mostHeld - heldBefore;
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
