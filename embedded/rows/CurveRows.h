#pragma once

#include "embedded/rows/RowFunction.h"
#include "embedded/rows/SectionTable.h"

namespace embedded {

// Sections begin at the points. In them the curve is a cubic of t, which goes from 0 to 1.
struct MonotoneCurve {
    int points; // 2 to mostSections
    SectionPositions positions;
    SectionNumbers begins;          // the positions once more
    SectionNumbers scales;          // one over the distance to the next point; 0 holds the point's value
    SectionNumbers coefficients[4]; // of the powers of t, from the constant on
};

using CurveRow = void(const MonotoneCurve& curve, const float* in, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(curveRow, CurveRow)

} // namespace embedded
