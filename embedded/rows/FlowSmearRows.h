#pragma once

#include "embedded/rows/Plane.h"
#include "embedded/rows/RowFunction.h"

namespace embedded {

struct FlowGround {
    Plane heights;
    int reach;          // pixels each way over which slopes are taken
    float scale;        // from differences of heights over twice the reach to slopes
    bool alongContours; // the flow runs at right angles to the slope
};

// The directions of the flow in row y: the way up, or a quarter of a turn from it. No longer than 1, and
// shorter where the ground is almost flat. Both components are packed into one number, for walks read them
// at random.
using FlowDirectionRow = void(const FlowGround& ground, int y, float* out);
KVSUBSTANCE_ROW_FUNCTION(flowDirectionRow, FlowDirectionRow)

enum class SmearResult { Mean, Darkest, Lightest };

struct FlowWalk {
    Plane directions;
    int steps;     // at least 1
    float length;  // of a step, in pixels; below 0 against the directions
    bool bothWays; // from the pixel the one way, and from the pixel the other way
    SmearResult result;
};

constexpr int smearBlock = 128;

// The source along the walks that begin at pixels [x, x + count) of row y, no more than a block of them. The
// channels of the source have one stride.
using FlowSmearRow = void(const FlowWalk& walk, const Plane* source, int channels, int y, int x, int count,
                          float* const* out);
KVSUBSTANCE_ROW_FUNCTION(flowSmearRow, FlowSmearRow)

} // namespace embedded
