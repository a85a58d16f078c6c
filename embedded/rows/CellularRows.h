#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

struct CellPoint {
    float x, y; // in cells, from the image's corner
    float id;
};

enum class CellResult { F1, F2MinusF1, EdgeDistance, CellId };
enum class CellMetric { Euclidean, Manhattan, Chebyshev };

constexpr int cellReach = 2; // the nearest points lie in the 5 x 5 cells around a pixel's

// A row of pixels in its row of cells.
struct CellularRowOf {
    CellResult result;
    CellMetric metric;       // of edge distances: euclidean
    float y;                 // of the row, in cells
    const float* x;          // of its pixels, in cells
    const int* firstPixels;  // of the columns
    const CellPoint* points; // of column 0; the wrapped neighbours within reach stand around
    int stride;              // from one row of points to the next
};

// For pixels [x, x + count), of which the first lies in the column.
using CellularRow = void(const CellularRowOf& row, int column, int x, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(cellularRow, CellularRow)

} // namespace embedded
