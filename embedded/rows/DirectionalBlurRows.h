#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

// A row that lies between two rows and begins between two of their pixels, wrapping around.
struct ShiftedRow {
    const float* upper;
    const float* lower;
    int shift;   // 0 to the width, exclusive
    float right; // from pixel shift to the next one, 0 to 1
    float down;  // from the upper row to the lower one
};

using MeanOfShiftedRows = void(const ShiftedRow* rows, int rowCount, int width, float* out);
KVSUBSTANCE_ROW_FUNCTION(meanOfShiftedRows, MeanOfShiftedRows)

} // namespace embedded
