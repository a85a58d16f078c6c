#pragma once

#include "embedded/rows/Plane.h"
#include "embedded/rows/RowFunction.h"

namespace embedded {

// Pixel x of the result, at u = (x + 1/2) * step - 1/2 - offset, shows the source's place, in sides of the
// source, (xByU * u + xByV + xOffset, yByU * u + yByV + yOffset).
struct SampleLine {
    float step;
    float offset;
    float xByU, xByV, xOffset;
    float sourceWidth;
    float yByU, yByV, yOffset;
    float sourceHeight;
};

using SampleLineRow = void(const Plane* source, int channels, const SampleLine& line, int count,
                           float* const* out);
KVSUBSTANCE_ROW_FUNCTION(sampleLineRow, SampleLineRow)

} // namespace embedded
