// Numbers that hold over sections of an axis, looked up without branches, so that many values go at once.
#pragma once

#include "embedded/rows/Arithmetic.h"

namespace embedded {

constexpr int mostSections = 6;

// Section s begins at the position s; the first one also has what lies before it. The positions rise.
struct SectionPositions {
    float begin[mostSections];
};

// One number for each section, as bits: those of the first one, then what differs from the one before.
struct SectionNumbers {
    uint32_t bits[mostSections];
};

inline namespace KVSUBSTANCE_ARITHMETIC {

inline SectionNumbers sectionNumbers(const float* numbers, int count) {
    SectionNumbers result = {};
    uint32_t before = 0;
    for (int s = 0; s < count; ++s) {
        uint32_t bits;
        memcpy(&bits, numbers + s, sizeof bits);
        result.bits[s] = bits ^ before;
        before = bits;
    }
    return result;
}

template <int count>
inline float numberAt(const SectionPositions& positions, const SectionNumbers& numbers, float value) {
    uint32_t bits = numbers.bits[0];
    for (int s = 1; s < count; ++s) {
        const uint32_t reached = value >= positions.begin[s] ? 0xffffffffu : 0u;
        bits ^= numbers.bits[s] & reached;
    }
    float number;
    memcpy(&number, &bits, sizeof number);
    return number;
}

} // namespace KVSUBSTANCE_ARITHMETIC
} // namespace embedded
