#pragma once

#include "embedded/rows/Plane.h"
#include "embedded/rows/RowFunction.h"

namespace embedded {

struct WarpGuides {
    Plane heights;    // samples are null where there are none
    float slopeScale; // displacement in pixels for a difference of 1 over two pixels
    float vectorScale;
};

// Pixels [x, x + count) of row y. The vectors are the same segment of a colour's red and green, or null.
using WarpRow = void(const Plane* source, int channels, const WarpGuides& guides, const float* red,
                     const float* green, int y, int x, int count, float* const* out);
KVSUBSTANCE_ROW_FUNCTION(warpRow, WarpRow)

struct WarpDirection {
    float x; // displacement in pixels for an amount of 1 more than the still one
    float y;
    float still; // the amount that is not displaced
};

// The amounts are the same segment of a gray image.
using DirectionalWarpRow = void(const Plane* source, int channels, const WarpDirection& direction,
                                const float* amounts, int y, int x, int count, float* const* out);
KVSUBSTANCE_ROW_FUNCTION(directionalWarpRow, DirectionalWarpRow)

} // namespace embedded
