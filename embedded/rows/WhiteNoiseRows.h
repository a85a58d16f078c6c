#pragma once

#include "embedded/rows/RowFunction.h"

#include <stdint.h>

namespace embedded {

// A random number for each of the columns.
using WhiteNoiseRow = void(uint32_t seed, int row, const int* columns, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(whiteNoiseRow, WhiteNoiseRow)

} // namespace embedded
