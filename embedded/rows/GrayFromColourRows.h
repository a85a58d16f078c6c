#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

// The weighted sum of a colour's components.
using WeighComponents = void(const float* const* colour, const float* weights, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(weighComponents, WeighComponents)

// The largest component times one weight and the smallest times the other.
using WeighExtremes = void(const float* const* colour, float largestWeight, float smallestWeight, int count,
                           float* out);
KVSUBSTANCE_ROW_FUNCTION(weighExtremes, WeighExtremes)

} // namespace embedded
