#include "embedded/rows/NormalRows.h"

#include "embedded/rows/WrappedRow.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

struct Scales {
    float right;
    float down;
};

// Before and behind are the rows of the same heights, a pixel to either side.
inline void storeNormals(const Scales& scales, const float* before, const float* behind, const float* above,
                         const float* below, int count, float* __restrict red, float* __restrict green,
                         float* __restrict blue) {
    const float right = scales.right;
    const float down = scales.down;
    for (int i = 0; i < count; ++i) {
        const float nx = right * (before[i] - behind[i]);
        const float ny = down * (below[i] - above[i]);
        const float half = 0.5f / squareRoot(nx * nx + ny * ny + 1.0f);
        red[i] = nx * half + 0.5f;
        green[i] = ny * half + 0.5f;
        blue[i] = half + 0.5f;
    }
}

} // namespace

void normalRow(const Plane& heights, float scale, float greenSign, int y, int x, int count,
               float* const* out) {
    constexpr int piece = 256;
    float beside[piece + 2];
    const float* const above = rowOf(heights, (y - 1) & (heights.height - 1)) + x;
    const float* const below = rowOf(heights, (y + 1) & (heights.height - 1)) + x;
    for (int begin = 0; begin < count; begin += piece) {
        const int length = count - begin < piece ? count - begin : piece;
        const float* const row = wrappedRow(heights, y, x + begin - 1, length + 2, beside);
        storeNormals({scale, scale * greenSign}, row, row + 2, above + begin, below + begin, length,
                     out[0] + begin, out[1] + begin, out[2] + begin);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
