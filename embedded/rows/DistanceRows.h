#pragma once

#include "embedded/rows/Plane.h"
#include "embedded/rows/RowFunction.h"

namespace embedded {

// What is inside (or outside) is a goal.
struct DistanceGoals {
    float threshold; // what is at least as bright is inside
    bool outside;
};

constexpr int mostDistanceColumns = 32;
constexpr float noDistance = 65536.0f; // larger than any distance within a column

// Distances along columns [first, first + count) to the nearest goal in them, wrapping around. The output has
// the source's shape, outStride floats from row to row.
using MeasureColumns = void(const Plane& source, const DistanceGoals& goals, int first, int count, float* out,
                            int outStride);
KVSUBSTANCE_ROW_FUNCTION(measureColumns, MeasureColumns)

// From squared distances, -1 where there is none, to distances times the scale, 1 at most.
using DistanceRow = void(const int* squares, float scale, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(distanceRow, DistanceRow)

} // namespace embedded
