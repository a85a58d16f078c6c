#include "embedded/rows/InstructionSet.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

#if defined(_MSC_VER) && defined(_M_X64)
#include <immintrin.h>
#include <intrin.h>
#endif

namespace embedded {
namespace {

constexpr const char* names[instructionSetCount] = {"baseline", "avx2", "avx512"};

#if defined(_MSC_VER) && defined(_M_X64)

bool hasBits(int word, int mask) {
    return (word & mask) == mask;
}

// Intel 64 and IA-32 Architectures Software Developer's Manual, volume 1, chapters 14 and 15: what the
// processor has, and which registers the operating system keeps.
InstructionSet ofMachine() {
    int words[4];
    __cpuid(words, 1);
    if (!hasBits(words[2], 1 << 27)) return InstructionSet::Baseline;
    const auto kept = static_cast<int>(_xgetbv(0));
    __cpuidex(words, 7, 0);
    if (!hasBits(kept, 0x06) || !hasBits(words[1], 1 << 5)) return InstructionSet::Baseline;
    const int foundation = 1 << 16 | 1 << 17 | 1 << 30;                                        // F, DQ, BW
    const bool large = hasBits(kept, 0xe6) && hasBits(words[1], foundation) && (words[1] < 0); // VL: bit 31
    return large ? InstructionSet::Avx512 : InstructionSet::Avx2;
}

#elif defined(__GNUC__) && defined(__x86_64__)

InstructionSet ofMachine() {
    if (!__builtin_cpu_supports("avx2")) return InstructionSet::Baseline;
    const bool large = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                       __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
    return large ? InstructionSet::Avx512 : InstructionSet::Avx2;
}

#else

InstructionSet ofMachine() {
    return InstructionSet::Baseline;
}

#endif

constexpr InstructionSet largestBuilt =
#if defined(KVSUBSTANCE_HAS_AVX512)
    InstructionSet::Avx512;
#elif defined(KVSUBSTANCE_HAS_AVX2)
    InstructionSet::Avx2;
#else
    InstructionSet::Baseline;
#endif

InstructionSet atMostBest(InstructionSet set) {
    return std::min(set, bestInstructionSet());
}

std::atomic<InstructionSet>& chosen() {
    static std::atomic<InstructionSet> set = [] {
        const char* const name = std::getenv("KVSUBSTANCE_INSTRUCTION_SET");
        return atMostBest(findInstructionSet(name ? name : "").value_or(bestInstructionSet()));
    }();
    return set;
}

} // namespace

const char* nameOf(InstructionSet set) {
    return names[static_cast<int>(set)];
}

std::optional<InstructionSet> findInstructionSet(std::string_view name) {
    for (int i = 0; i < instructionSetCount; ++i)
        if (name == names[i]) return static_cast<InstructionSet>(i);
    return std::nullopt;
}

InstructionSet bestInstructionSet() {
    static const InstructionSet best = std::min(ofMachine(), largestBuilt);
    return best;
}

InstructionSet instructionSet() {
    return chosen().load(std::memory_order_relaxed);
}

void forceInstructionSet(InstructionSet set) {
    chosen().store(atMostBest(set), std::memory_order_relaxed);
}

} // namespace embedded
