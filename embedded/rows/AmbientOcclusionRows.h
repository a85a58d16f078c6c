#pragma once

#include "embedded/rows/Plane.h"
#include "embedded/rows/RowFunction.h"

namespace embedded {

// Row y of the image of a quarter of the size: the mean of each four by four pixels.
using QuarterRow = void(const Plane& image, int y, float* out);
KVSUBSTANCE_ROW_FUNCTION(quarterRow, QuarterRow)

constexpr int horizonDirections = 8;
constexpr int mostHorizonRays = 4; // beside each other in a direction's eighth of a turn
constexpr int mostHorizonSteps = 5;

// A place that may hide the sky, in pixels from the one that looks. A height above that one times the scale
// is the tangent of an elevation.
struct HorizonPlace {
    int x;
    int y;
    float scale;
};

// What the image of a quarter of the size has found.
struct FartherHorizons {
    Plane heights;
    Plane tangents[horizonDirections];
    float lowering; // of tangents for those who stand higher than that image says, by as much
};

struct Horizons {
    Plane heights;
    const FartherHorizons* farther; // or null
    int rays;
    int steps;
    HorizonPlace places[horizonDirections][mostHorizonRays][mostHorizonSteps];
};

// The tangents of the highest elevations in row y for each direction, the mean of its rays; not below 0.
using HorizonRow = void(const Horizons& horizons, int y, float* const* out);
KVSUBSTANCE_ROW_FUNCTION(horizonRow, HorizonRow)

// The light that the horizons leave in row y, each lack of it times the strength.
using OcclusionRow = void(const Horizons& horizons, float strength, int y, float* out);
KVSUBSTANCE_ROW_FUNCTION(occlusionRow, OcclusionRow)

} // namespace embedded
