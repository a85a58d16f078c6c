#include "embedded/rows/WeightedRows.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

// The sums of this many pixels stay in the nearest cache while rows are added, several at a time.
constexpr int chunk = 1024;

void setToRow(const float* row, float weight, int count, float* __restrict out) {
    for (int i = 0; i < count; ++i) out[i] = weight * row[i];
}

void addRow(const float* row, float weight, int count, float* __restrict out) {
    for (int i = 0; i < count; ++i) out[i] += weight * row[i];
}

void addThreeRows(const float* const* rows, int begin, const float* weights, int count,
                  float* __restrict out) {
    const float* const a = rows[0] + begin;
    const float* const b = rows[1] + begin;
    const float* const c = rows[2] + begin;
    const float wa = weights[0];
    const float wb = weights[1];
    const float wc = weights[2];
    for (int i = 0; i < count; ++i) out[i] = ((out[i] + wa * a[i]) + wb * b[i]) + wc * c[i];
}

void addPair(const float* before, const float* behind, float weight, int count, float* __restrict out) {
    for (int i = 0; i < count; ++i) out[i] += weight * (before[i] + behind[i]);
}

// The pairs at the distances d to d + 3.
void addFourPairs(const float* const* middle, int d, int begin, const float* weights, int count,
                  float* __restrict out) {
    const float* const a = middle[-d] + begin;
    const float* const b = middle[-d - 1] + begin;
    const float* const c = middle[-d - 2] + begin;
    const float* const e = middle[-d - 3] + begin;
    const float* const a2 = middle[d] + begin;
    const float* const b2 = middle[d + 1] + begin;
    const float* const c2 = middle[d + 2] + begin;
    const float* const e2 = middle[d + 3] + begin;
    const float wa = weights[d];
    const float wb = weights[d + 1];
    const float wc = weights[d + 2];
    const float we = weights[d + 3];
    for (int i = 0; i < count; ++i) {
        const float sum = (out[i] + wa * (a[i] + a2[i])) + wb * (b[i] + b2[i]);
        out[i] = (sum + wc * (c[i] + c2[i])) + we * (e[i] + e2[i]);
    }
}

} // namespace

void weighRows(const float* const* rows, const float* weights, int rowCount, int count, float* out) {
    for (int begin = 0; begin < count; begin += chunk) {
        const int length = count - begin < chunk ? count - begin : chunk;
        setToRow(rows[0] + begin, weights[0], length, out + begin);
        int row = 1;
        for (; row + 3 <= rowCount; row += 3)
            addThreeRows(rows + row, begin, weights + row, length, out + begin);
        for (; row < rowCount; ++row) addRow(rows[row] + begin, weights[row], length, out + begin);
    }
}

void weighPairs(const float* const* middle, const float* weights, int radius, int count, float* out) {
    for (int begin = 0; begin < count; begin += chunk) {
        const int length = count - begin < chunk ? count - begin : chunk;
        setToRow(middle[0] + begin, weights[0], length, out + begin);
        int d = 1;
        for (; d + 3 <= radius; d += 4) addFourPairs(middle, d, begin, weights, length, out + begin);
        for (; d <= radius; ++d)
            addPair(middle[-d] + begin, middle[d] + begin, weights[d], length, out + begin);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
