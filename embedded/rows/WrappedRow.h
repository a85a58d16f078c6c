// Rows read beyond their ends, where they repeat.
#pragma once

#include "embedded/rows/Plane.h"

namespace embedded {
inline namespace KVSUBSTANCE_ARITHMETIC {

// Samples [x, x + count) of row y, both wrapping around: in place where possible, else copied to the buffer,
// which has room for count.
inline const float* wrappedRow(const Plane& plane, int y, int x, int count, float* buffer) {
    const float* const row = rowOf(plane, y & (plane.height - 1));
    const int first = x & (plane.width - 1);
    if (first + count <= plane.width) return row + first;
    for (int i = 0; i < count; ++i) buffer[i] = row[(first + i) & (plane.width - 1)];
    return buffer;
}

} // namespace KVSUBSTANCE_ARITHMETIC
} // namespace embedded
