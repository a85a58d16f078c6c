#pragma once

#include "embedded/rows/Plane.h"
#include "embedded/rows/RowFunction.h"

namespace embedded {

// Row y of the image of half the size: the mean of each two by two pixels.
using HalveRow = void(const Plane& image, int y, float* out);
KVSUBSTANCE_ROW_FUNCTION(halveRow, HalveRow)

// Row y of the image of twice the size, interpolated linearly.
using DoubleRow = void(const Plane& image, int y, float* out);
KVSUBSTANCE_ROW_FUNCTION(doubleRow, DoubleRow)

constexpr int mostReach = 6;

// Weights of a pixel and of those beside it, outwards. Together, both sides, they sum to 1.
struct MeanWeights {
    int reach;
    float weights[mostReach + 1];
};

// Row y of the weighted means, in both directions.
using MeanRow = void(const Plane& image, const MeanWeights& weights, int y, float* out);
KVSUBSTANCE_ROW_FUNCTION(meanRow, MeanRow)

enum class CurvatureResult { Signed, Edges, Cavities, Wear };

struct CurvatureMeasure {
    CurvatureResult result;
    float scale; // from differences of heights to the full range
    float contrast;
};

// From the heights and their means around. The breakup may be null.
using CurvatureRow = void(const CurvatureMeasure& measure, const float* heights, const float* means,
                          const float* breakup, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(curvatureRow, CurvatureRow)

} // namespace embedded
