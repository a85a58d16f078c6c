#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

struct HueChange {
    float shift; // in sixths of a turn
    float saturation;
    float lightness;
};

// Red, green and blue.
using HueSaturationLightnessRow = void(const HueChange& change, const float* const* in, int count,
                                       float* const* out);
KVSUBSTANCE_ROW_FUNCTION(hueSaturationLightnessRow, HueSaturationLightnessRow)

} // namespace embedded
