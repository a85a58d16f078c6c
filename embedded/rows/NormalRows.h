#pragma once

#include "embedded/rows/Plane.h"
#include "embedded/rows/RowFunction.h"

namespace embedded {

// The normals of heights as colours, for pixels [x, x + count) of row y.
using NormalRow = void(const Plane& heights, float scale, float greenSign, int y, int x, int count,
                       float* const* out);
KVSUBSTANCE_ROW_FUNCTION(normalRow, NormalRow)

} // namespace embedded
