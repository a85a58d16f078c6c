#include "embedded/rows/DistanceRows.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

struct Columns {
    float away[mostDistanceColumns]; // from the last goal passed
};

void setAway(Columns& columns) {
    for (int x = 0; x < mostDistanceColumns; ++x) columns.away[x] = noDistance;
}

void passDown(const float* in, const DistanceGoals& goals, int count, Columns& columns) {
    const float threshold = goals.threshold;
    if (goals.outside) {
        for (int x = 0; x < count; ++x) {
            const float next = columns.away[x] < noDistance ? columns.away[x] + 1.0f : noDistance;
            columns.away[x] = in[x] >= threshold ? next : 0.0f;
        }
    } else {
        for (int x = 0; x < count; ++x) {
            const float next = columns.away[x] < noDistance ? columns.away[x] + 1.0f : noDistance;
            columns.away[x] = in[x] >= threshold ? 0.0f : next;
        }
    }
}

void passUp(const float* distances, int count, Columns& columns) {
    for (int x = 0; x < count; ++x) {
        const float next = columns.away[x] + 1.0f;
        columns.away[x] = next < distances[x] ? next : distances[x];
    }
}

void store(const Columns& columns, int count, float* __restrict out) {
    for (int x = 0; x < count; ++x) out[x] = columns.away[x];
}

} // namespace

// Twice around in each direction, so that what lies beyond an edge is seen.
void measureColumns(const Plane& source, const DistanceGoals& goals, int first, int count, float* out,
                    int outStride) {
    const int height = source.height;
    Columns columns;
    setAway(columns);
    for (int y = 0; y < height; ++y) passDown(rowOf(source, y) + first, goals, count, columns);
    for (int y = 0; y < height; ++y) {
        passDown(rowOf(source, y) + first, goals, count, columns);
        store(columns, count, out + static_cast<long long>(outStride) * y);
    }
    setAway(columns);
    for (int y = height - 1; y >= 0; --y) passUp(out + static_cast<long long>(outStride) * y, count, columns);
    for (int y = height - 1; y >= 0; --y) {
        float* const row = out + static_cast<long long>(outStride) * y;
        passUp(row, count, columns);
        store(columns, count, row);
    }
}

void distanceRow(const int* squares, float scale, int count, float* __restrict out) {
    for (int i = 0; i < count; ++i) {
        const float square = static_cast<float>(squares[i] < 0 ? 0 : squares[i]);
        const float distance = clamp(squareRoot(square) * scale, 0.0f, 1.0f);
        out[i] = squares[i] < 0 ? 1.0f : distance;
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
