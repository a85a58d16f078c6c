#pragma once

#include "embedded/rows/RowFunction.h"
#include "embedded/rows/SectionTable.h"

namespace embedded {

// Sections begin at the stops. In them the colour is colour + difference * t, where t goes from 0 to 1.
struct Gradient {
    int stops; // 2 to mostSections
    bool eased;
    SectionPositions positions;
    SectionNumbers begins;     // the positions once more
    SectionNumbers scales;     // one over the distance to the next stop; 0 holds the stop's colour
    SectionNumbers colours[4]; // by channel
    SectionNumbers differences[4];
};

// To the first 3 or 4 channels.
using GradientMapRow = void(const Gradient& gradient, const float* in, int channels, int count,
                            float* const* out);
KVSUBSTANCE_ROW_FUNCTION(gradientMapRow, GradientMapRow)

} // namespace embedded
