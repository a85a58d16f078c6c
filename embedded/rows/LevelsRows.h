#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

struct LevelsCurve {
    float inputLow;
    float scale; // one over the input range
    bool step;   // of an empty input range
    float exponent;
    float outputLow;
    float outputHigh;
};

using LevelsRow = void(const LevelsCurve& curve, const float* in, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(levelsRow, LevelsRow)

} // namespace embedded
