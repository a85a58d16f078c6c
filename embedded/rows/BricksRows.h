#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

enum class BrickResult { Mask, Height, Id };

// What all bricks have in common. Lengths are in row heights.
struct BrickFace {
    BrickResult result;
    float radius;         // of the corners
    float pixelsPerRow;   // one over the size of a pixel
    float bevelPerHeight; // one over the bevel's width; 0: none
};

// Pixels [begin, end) of a segment that lie in one brick, with the joint around it.
struct BrickRun {
    int begin;
    int end;
    float origin; // added to a pixel's place in its cell
    float unit;   // the sum becomes its distance from the brick's middle
    float y;      // likewise downwards
    float halfWidth;
    float halfHeight;
    float top; // height in the middle
    float slope;
    float id;
};

// The places are those of the segment's pixels in their cells.
using BrickRow = void(const BrickFace& face, const BrickRun* runs, int runCount, const float* places,
                      float* out);
KVSUBSTANCE_ROW_FUNCTION(brickRow, BrickRow)

} // namespace embedded
