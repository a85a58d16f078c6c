#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

// Rec. 709 weights.
using LuminanceRow = void(const float* red, const float* green, const float* blue, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(luminanceRow, LuminanceRow)

} // namespace embedded
