#include "embedded/rows/CellularRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

constexpr float farAway = 1e9f;
constexpr int runLength = 64;
constexpr int nearPoints = 9;
constexpr int ringPoints = 16;

// Pixels of one row and one cell.
struct Run {
    const CellPoint* points; // of the cell
    int stride;
    float y;
    const float* x;
    int count; // at most runLength
};

// The points of the 3 x 3 cells around a run.
struct NearPoints {
    explicit NearPoints(const Run& run) {
        for (int i = 0; i < nearPoints; ++i) {
            const CellPoint& point = run.points[(i / 3 - 1) * run.stride + i % 3 - 1];
            x[i] = point.x;
            dy[i] = point.y - run.y;
            id[i] = point.id;
        }
    }

    float x[nearPoints];
    float dy[nearPoints];
    float id[nearPoints];
};

// The cells around those.
inline const CellPoint& ringPoint(const Run& run, int i) {
    const int dy = i < 5 ? -2 : i < 11 ? (i - 5) / 2 - 1 : 2;
    const int dx = i < 5 ? i - 2 : i < 11 ? (i % 2 == 1 ? -2 : 2) : i - 13;
    return run.points[dy * run.stride + dx];
}

inline float lesser(float a, float b) {
    return a < b ? a : b;
}

inline float greater(float a, float b) {
    return a > b ? a : b;
}

// For the euclidean metric the square of the distance.
template <CellMetric metric>
inline float measure(float dx, float dy) {
    if (metric == CellMetric::Euclidean) return dx * dx + dy * dy;
    const float width = absolute(dx);
    const float height = absolute(dy);
    return metric == CellMetric::Manhattan ? width + height : greater(width, height);
}

template <CellMetric metric>
inline float distanceOf(float measured) {
    return metric == CellMetric::Euclidean ? squareRoot(measured) : measured;
}

template <CellMetric metric>
inline float measureNear(const NearPoints& points, int i, float pixelX) {
    return measure<metric>(points.x[i] - pixelX, points.dy[i]);
}

// The least of all in pairs: a chain would be longer to wait for.
template <CellMetric metric>
inline float firstOfNear(const NearPoints& points, float pixelX) {
    const float above =
        lesser(lesser(measureNear<metric>(points, 0, pixelX), measureNear<metric>(points, 1, pixelX)),
               measureNear<metric>(points, 2, pixelX));
    const float beside =
        lesser(lesser(measureNear<metric>(points, 3, pixelX), measureNear<metric>(points, 4, pixelX)),
               measureNear<metric>(points, 5, pixelX));
    const float below =
        lesser(lesser(measureNear<metric>(points, 6, pixelX), measureNear<metric>(points, 7, pixelX)),
               measureNear<metric>(points, 8, pixelX));
    return lesser(lesser(above, beside), below);
}

struct TwoDistances {
    float first;
    float second;
};

inline TwoDistances merged(TwoDistances a, TwoDistances b) {
    return {lesser(a.first, b.first), lesser(greater(a.first, b.first), lesser(a.second, b.second))};
}

template <CellMetric metric>
inline TwoDistances twoOfThree(const NearPoints& points, int i, float pixelX) {
    const float a = measureNear<metric>(points, i, pixelX);
    const float b = measureNear<metric>(points, i + 1, pixelX);
    return merged({lesser(a, b), greater(a, b)}, {measureNear<metric>(points, i + 2, pixelX), farAway});
}

template <CellMetric metric>
inline TwoDistances twoOfNear(const NearPoints& points, float pixelX) {
    return merged(merged(twoOfThree<metric>(points, 0, pixelX), twoOfThree<metric>(points, 3, pixelX)),
                  twoOfThree<metric>(points, 6, pixelX));
}

struct Nearest {
    float first;
    float x;
    float y; // relative to the row
    float id;
};

// What is not used of the nearest costs nothing.
template <CellMetric metric>
inline void consider(Nearest& nearest, const NearPoints& points, int i, float pixelX) {
    const float measured = measureNear<metric>(points, i, pixelX);
    const bool nearer = measured < nearest.first;
    nearest.first = nearer ? measured : nearest.first;
    nearest.x = nearer ? points.x[i] : nearest.x;
    nearest.y = nearer ? points.dy[i] : nearest.y;
    nearest.id = nearer ? points.id[i] : nearest.id;
}

template <CellMetric metric>
inline Nearest nearestOfNear(const NearPoints& points, float pixelX) {
    Nearest nearest = {farAway, 0, 0, 0};
    consider<metric>(nearest, points, 0, pixelX);
    consider<metric>(nearest, points, 1, pixelX);
    consider<metric>(nearest, points, 2, pixelX);
    consider<metric>(nearest, points, 3, pixelX);
    consider<metric>(nearest, points, 4, pixelX);
    consider<metric>(nearest, points, 5, pixelX);
    consider<metric>(nearest, points, 6, pixelX);
    consider<metric>(nearest, points, 7, pixelX);
    consider<metric>(nearest, points, 8, pixelX);
    return nearest;
}

// Points of the ring are a cell away or more: they count only where the others are further. Whether they are
// looked at depends on the run, what comes out does not.
inline bool anyBeyondCell(const float* distances, int count) {
    int far = 0;
    for (int i = 0; i < count; ++i) far |= distances[i] > 1.0f;
    return far != 0;
}

template <CellMetric metric>
void firstDistances(const Run& run, float* __restrict out) {
    const NearPoints near(run);
    const float* const x = run.x;
    for (int i = 0; i < run.count; ++i) out[i] = firstOfNear<metric>(near, x[i]);
    if (anyBeyondCell(out, run.count)) {
        for (int k = 0; k < ringPoints; ++k) {
            const CellPoint& point = ringPoint(run, k);
            const float pointX = point.x;
            const float dy = point.y - run.y;
            for (int i = 0; i < run.count; ++i) out[i] = lesser(measure<metric>(pointX - x[i], dy), out[i]);
        }
    }
    for (int i = 0; i < run.count; ++i) out[i] = distanceOf<metric>(out[i]);
}

template <CellMetric metric>
void distanceDifferences(const Run& run, float* __restrict out) {
    const NearPoints near(run);
    const float* const x = run.x;
    float firsts[runLength];
    for (int i = 0; i < run.count; ++i) {
        const TwoDistances distances = twoOfNear<metric>(near, x[i]);
        firsts[i] = distances.first;
        out[i] = distances.second;
    }
    if (anyBeyondCell(out, run.count)) {
        for (int k = 0; k < ringPoints; ++k) {
            const CellPoint& point = ringPoint(run, k);
            const float pointX = point.x;
            const float dy = point.y - run.y;
            for (int i = 0; i < run.count; ++i) {
                const float measured = measure<metric>(pointX - x[i], dy);
                out[i] = lesser(greater(firsts[i], measured), out[i]);
                firsts[i] = lesser(measured, firsts[i]);
            }
        }
    }
    for (int i = 0; i < run.count; ++i) out[i] = distanceOf<metric>(out[i]) - distanceOf<metric>(firsts[i]);
}

template <CellMetric metric>
void nearestIds(const Run& run, float* __restrict out) {
    const NearPoints near(run);
    const float* const x = run.x;
    float firsts[runLength];
    for (int i = 0; i < run.count; ++i) {
        const Nearest nearest = nearestOfNear<metric>(near, x[i]);
        firsts[i] = nearest.first;
        out[i] = nearest.id;
    }
    if (!anyBeyondCell(firsts, run.count)) return;
    for (int k = 0; k < ringPoints; ++k) {
        const CellPoint& point = ringPoint(run, k);
        const float pointX = point.x;
        const float dy = point.y - run.y;
        const float id = point.id;
        for (int i = 0; i < run.count; ++i) {
            const float measured = measure<metric>(pointX - x[i], dy);
            out[i] = measured < firsts[i] ? id : out[i];
            firsts[i] = lesser(measured, firsts[i]);
        }
    }
}

// The pixels' nearest points and, as a fraction, the square of twice the distance to the nearest border.
struct Borders {
    float first[runLength];
    float nearestX[runLength];
    float nearestY[runLength];
    float leads[runLength];
    float squares[runLength];
};

void findNearest(const Run& run, Borders& borders) {
    constexpr CellMetric metric = CellMetric::Euclidean;
    const NearPoints near(run);
    const float* const x = run.x;
    for (int i = 0; i < run.count; ++i) {
        const Nearest nearest = nearestOfNear<metric>(near, x[i]);
        borders.first[i] = nearest.first;
        borders.nearestX[i] = nearest.x;
        borders.nearestY[i] = nearest.y;
    }
    if (!anyBeyondCell(borders.first, run.count)) return;
    for (int k = 0; k < ringPoints; ++k) {
        const CellPoint& point = ringPoint(run, k);
        const float pointX = point.x;
        const float dy = point.y - run.y;
        for (int i = 0; i < run.count; ++i) {
            const float measured = measure<metric>(pointX - x[i], dy);
            const bool nearer = measured < borders.first[i];
            borders.nearestX[i] = nearer ? pointX : borders.nearestX[i];
            borders.nearestY[i] = nearer ? dy : borders.nearestY[i];
            borders.first[i] = nearer ? measured : borders.first[i];
        }
    }
}

// The border between two points is their perpendicular bisector. How much further the other point is, in
// squares, by twice the distance between the points is how far the border is. Fractions are compared without
// dividing.
void considerBorder(const Run& run, float pointX, float dy, Borders& borders) {
    const float* const x = run.x;
    for (int i = 0; i < run.count; ++i) {
        const float acrossX = pointX - borders.nearestX[i];
        const float acrossY = dy - borders.nearestY[i];
        const float square = acrossX * acrossX + acrossY * acrossY;
        const float lead = measure<CellMetric::Euclidean>(pointX - x[i], dy) - borders.first[i];
        const float oldLead = borders.leads[i];
        const float oldSquare = borders.squares[i];
        const bool nearer = (lead * lead) * oldSquare < (oldLead * oldLead) * square;
        const bool taken = nearer & (square > 1e-12f);
        borders.leads[i] = taken ? lead : oldLead;
        borders.squares[i] = taken ? square : oldSquare;
    }
}

void edgeDistances(const Run& run, float* __restrict out) {
    Borders borders;
    findNearest(run, borders);
    for (int i = 0; i < run.count; ++i) {
        borders.leads[i] = farAway;
        borders.squares[i] = 1.0f;
    }
    const NearPoints near(run);
    for (int k = 0; k < nearPoints; ++k) considerBorder(run, near.x[k], near.dy[k], borders);

    // A point's border is at least half as far as the point less the nearest one's distance. The margin is
    // much wider than what rounding does.
    int far = 0;
    for (int i = 0; i < run.count; ++i) {
        const float edge = borders.leads[i] / (2.0f * squareRoot(borders.squares[i]));
        far |= 2.0f * edge + squareRoot(borders.first[i]) > 0.999f;
        out[i] = edge;
    }
    if (!far) return;
    for (int k = 0; k < ringPoints; ++k) {
        const CellPoint& point = ringPoint(run, k);
        considerBorder(run, point.x, point.y - run.y, borders);
    }
    for (int i = 0; i < run.count; ++i) out[i] = borders.leads[i] / (2.0f * squareRoot(borders.squares[i]));
}

template <CellMetric metric>
void computeRun(CellResult result, const Run& run, float* out) {
    switch (result) {
    case CellResult::F1:
        return firstDistances<metric>(run, out);
    case CellResult::F2MinusF1:
        return distanceDifferences<metric>(run, out);
    case CellResult::EdgeDistance:
        return edgeDistances(run, out);
    case CellResult::CellId:
        return nearestIds<metric>(run, out);
    }
}

template <CellMetric metric>
void computeRow(const CellularRowOf& row, int column, int x, int count, float* out) {
    int i = 0;
    for (; i < count; ++column) {
        const int next = row.firstPixels[column + 1] - x;
        const int end = next < count ? next : count;
        while (i < end) {
            const int length = end - i < runLength ? end - i : runLength;
            computeRun<metric>(row.result, {row.points + column, row.stride, row.y, row.x + x + i, length},
                               out + i);
            i += length;
        }
    }
}

} // namespace

void cellularRow(const CellularRowOf& row, int column, int x, int count, float* out) {
    if (row.metric == CellMetric::Euclidean) computeRow<CellMetric::Euclidean>(row, column, x, count, out);
    if (row.metric == CellMetric::Manhattan) computeRow<CellMetric::Manhattan>(row, column, x, count, out);
    if (row.metric == CellMetric::Chebyshev) computeRow<CellMetric::Chebyshev>(row, column, x, count, out);
}

} // namespace embedded::KVSUBSTANCE_ROWS
