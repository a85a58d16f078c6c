#include "fuzzers/MemoryPeak.h"

#include "fuzzers/Fuzzing.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KVSUBSTANCE_COUNTS_MEMORY
#endif
#endif

#ifdef KVSUBSTANCE_COUNTS_MEMORY
#include <sanitizer/allocator_interface.h>

#include <algorithm>
#include <atomic>
#endif

namespace fuzzing {

#ifdef KVSUBSTANCE_COUNTS_MEMORY

namespace {

std::atomic<std::ptrdiff_t> present{0}; // since the start; what was there before may be freed
std::atomic<std::ptrdiff_t> most{0};

void allocated(const volatile void*, std::size_t size) {
    const std::ptrdiff_t now = present += static_cast<std::ptrdiff_t>(size);
    std::ptrdiff_t known = most;
    while (now > known && !most.compare_exchange_weak(known, now)) {
    }
}

void freed(const volatile void* block) {
    if (block)
        present -=
            static_cast<std::ptrdiff_t>(__sanitizer_get_allocated_size(const_cast<const void*>(block)));
}

} // namespace

MemoryPeak::MemoryPeak() {
    static const int installed = __sanitizer_install_malloc_and_free_hooks(allocated, freed);
    require(installed != 0, "the sanitizer takes the hooks");
    present = 0;
    most = 0;
}

std::size_t MemoryPeak::bytes() const {
    return static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, most));
}

#else

MemoryPeak::MemoryPeak() = default;
std::size_t MemoryPeak::bytes() const {
    return 0;
}

#endif

void requireLoadingBound(const MemoryPeak& peak, std::size_t size) {
    constexpr std::size_t bytesPerByte = 100;
    constexpr std::size_t atAnySize = std::size_t{256} << 10;
    require(peak.bytes() <= bytesPerByte * size + atAnySize, "loading n bytes takes at most 100 n + 256 KiB");
}

} // namespace fuzzing
