// Weighted sums of rows, in the order of the rows.
#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

// Of at least one row.
using WeighRows = void(const float* const* rows, const float* weights, int rowCount, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(weighRows, WeighRows)

// The middle row has the first weight, the rows at the distance i before and behind it the weight i. The
// rows may be one row at different offsets.
using WeighPairs = void(const float* const* middle, const float* weights, int radius, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(weighPairs, WeighPairs)

} // namespace embedded
