#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

struct Adjustment {
    float scale;
    float offset; // added to the scaled value
    bool clamps;
    float low;
    float high;
};

using AdjustRow = void(const Adjustment& adjustment, const float* in, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(adjustRow, AdjustRow)

} // namespace embedded
