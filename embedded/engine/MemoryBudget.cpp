#include "embedded/engine/MemoryBudget.h"

#include <charconv>
#include <cstdlib>
#include <cstring>

namespace embedded {

std::uint64_t memoryBudget() {
    constexpr std::uint64_t mebibyte = 1 << 20;
    constexpr std::uint64_t mostMebibytes = 1 << 20;
    std::uint64_t mebibytes = 512;
    if (const char* const text = std::getenv("KVSUBSTANCE_ENGINE_MEMORY")) {
        std::uint64_t number = 0;
        const char* const end = text + std::strlen(text);
        const auto [rest, error] = std::from_chars(text, end, number);
        if (error == std::errc() && rest == end && number <= mostMebibytes) mebibytes = number;
    }
    return mebibytes * mebibyte;
}

} // namespace embedded
