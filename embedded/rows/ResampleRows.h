#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

// The means of neighbours: 2 * count pixels become count.
using HalveRow = void(const float* in, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(halveRow, HalveRow)

// Between the pixels left[i] and left[i] + 1, at the place t[i] from 0 to 1.
using InterpolateRow = void(const float* in, const int* left, const float* t, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(interpolateRow, InterpolateRow)

// Every pixel of a row becomes 2^shift ones, of a uniform cubic B-spline with the pixels as coefficients.
// Before the row stand two more pixels and behind it two. The weights are those of the four pixels around for
// each place between the two in the middle: 2^shift for the first pixel, then as many for the next ones.
using SplineRow = void(const float* in, int shift, const float* weights, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(splineRow, SplineRow)

} // namespace embedded
