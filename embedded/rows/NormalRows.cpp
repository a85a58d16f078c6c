#include "embedded/rows/NormalRows.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

struct Normals {
    const float* above;
    const float* middle;
    const float* below;
    float scale;
    float greenScale;
    float* __restrict red;
    float* __restrict green;
    float* __restrict blue;
};

inline void storeNormal(const Normals& n, int i, int x, int before, int after) {
    const float nx = n.scale * (n.middle[before] - n.middle[after]);
    const float ny = n.greenScale * (n.below[x] - n.above[x]);
    const float half = 0.5f / squareRoot(nx * nx + ny * ny + 1.0f);
    n.red[i] = nx * half + 0.5f;
    n.green[i] = ny * half + 0.5f;
    n.blue[i] = half + 0.5f;
}

} // namespace

void normalRow(const Plane& heights, float scale, float greenSign, int y, int x, int count,
               float* const* out) {
    const int lastX = heights.width - 1;
    const int lastY = heights.height - 1;
    const Normals n = {rowOf(heights, (y - 1) & lastY),
                       rowOf(heights, y),
                       rowOf(heights, (y + 1) & lastY),
                       scale,
                       scale * greenSign,
                       out[0],
                       out[1],
                       out[2]};
    // Only the ends of a row look around its edges.
    int i = 0;
    if (x == 0 && count > 0) storeNormal(n, i++, 0, lastX, 1 & lastX);
    const int inner = x + count > lastX ? count - 1 : count;
    for (; i < inner; ++i) storeNormal(n, i, x + i, x + i - 1, x + i + 1);
    if (i < count) storeNormal(n, i, lastX, lastX - 1, 0);
}

} // namespace embedded::KVSUBSTANCE_ROWS
