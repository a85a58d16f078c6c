#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

enum class WeaveResult { Mask, Height, Id, Upright };

// Places along one axis, in threads: how they lie to the nearest thread and between two crossings.
struct ThreadPlaces {
    const float* offsets;   // from the thread's middle, without sign
    const float* covers;    // 1 on the thread, 0 beside it
    const float* roundings; // height of the thread's round back, to 1/2
    const float* ways;      // from the crossing before to the one behind, 0 to 1
};

// Pixels [begin, end) of a segment over one upright thread (the warp) and between two crossings of the level
// ones (the weft).
struct ThreadRun {
    int begin;
    int end;
    float warpRise;  // height of the upright thread's course, 0 to 1/2
    float weftStart; // heights of the level thread at the two crossings, 0 to 1/2
    float weftEnd;
    float warpValue; // what is shown where the upright thread lies on top
};

// What a row of pixels has of its level thread.
struct WeaveRowOf {
    WeaveResult result;
    float halfWidth;
    float weftOffset;
    float weftCover;
    float weftRounding;
    float weftValue;
};

// The places are those of the segment's pixels.
using WeaveRow = void(const WeaveRowOf& row, const ThreadRun* runs, int runCount, const ThreadPlaces& places,
                      float* out);
KVSUBSTANCE_ROW_FUNCTION(weaveRow, WeaveRow)

} // namespace embedded
