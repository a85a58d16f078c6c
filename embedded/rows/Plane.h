// One channel of an image, as row functions see it.
#pragma once

#include "embedded/rows/Arithmetic.h"

namespace embedded {

// Row y begins at samples + y * stride. Sides are powers of two; no offset within a plane exceeds 2^30.
struct Plane {
    const float* samples;
    int width;
    int height;
    int stride; // in floats; 0 where all rows are one
};

inline namespace KVSUBSTANCE_ARITHMETIC {

inline const float* rowOf(const Plane& plane, int y) {
    return plane.samples + static_cast<long long>(plane.stride) * y;
}

} // namespace KVSUBSTANCE_ARITHMETIC
} // namespace embedded
