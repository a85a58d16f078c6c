#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

// Red, green and blue of all.
using NormalCombineRow = void(const float* const* base, const float* const* detail, float strength, int count,
                              float* const* out);
KVSUBSTANCE_ROW_FUNCTION(normalCombineRow, NormalCombineRow)

} // namespace embedded
