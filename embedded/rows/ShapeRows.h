#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

enum class ShapeForm { Disc, Polygon, Star, Box, Ring, Line };

// Lengths are relative to the shorter side of a cell.
struct ShapeOutline {
    ShapeForm form;
    float radius;
    float second; // inner radius, half the height, or half the thickness
    float turnCosine;
    float turnSine;
    float sector;  // in turns
    float valleyX; // the inner corner beside the tip, which is at (radius, 0)
    float valleyY;
    float softness; // width of the edge
    float reach;    // from the middle to where nothing is left
    float cellWidth;
    float cellHeight;
};

// For pixels of one row at these places, counted from their cells' middles.
using ShapeRow = void(const ShapeOutline& outline, const float* x, float y, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(shapeRow, ShapeRow)

} // namespace embedded
