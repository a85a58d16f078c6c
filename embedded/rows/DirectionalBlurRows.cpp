#include "embedded/rows/DirectionalBlurRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

// Sums stay in the nearest cache while rows are added.
constexpr int chunk = 1024;

inline float between(const ShiftedRow& row, int left, int right) {
    const float above = mix(row.upper[left], row.upper[right], row.right);
    const float below = mix(row.lower[left], row.lower[right], row.right);
    return mix(above, below, row.down);
}

// Pixels [begin, end) of the result, none of which reads around the edge.
void addInner(const ShiftedRow& shifted, int offset, int begin, int end, float* __restrict out) {
    const ShiftedRow row = shifted;
    for (int i = begin; i < end; ++i) out[i] += between(row, i + offset, i + offset + 1);
}

// Pixels [begin, end) of the result: up to the one that reads around the edge, that one, and those behind it.
void addRow(const ShiftedRow& row, int width, int begin, int end, float* out) {
    const int edge = width - 1 - row.shift;
    const int before = edge < begin ? begin : edge > end ? end : edge;
    addInner(row, row.shift, begin, before, out);
    const bool hasEdge = edge >= begin && edge < end;
    if (hasEdge) out[edge] += between(row, width - 1, 0);
    addInner(row, row.shift - width, hasEdge ? edge + 1 : before, end, out);
}

} // namespace

void meanOfShiftedRows(const ShiftedRow* rows, int rowCount, int width, float* out) {
    const float share = 1.0f / static_cast<float>(rowCount);
    for (int begin = 0; begin < width; begin += chunk) {
        const int end = width - begin < chunk ? width : begin + chunk;
        for (int i = begin; i < end; ++i) out[i] = 0.0f;
        for (int row = 0; row < rowCount; ++row) addRow(rows[row], width, begin, end, out);
        for (int i = begin; i < end; ++i) out[i] *= share;
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
