#include "embedded/rows/NormalCombineRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

constexpr int chunk = 256;

struct Vectors {
    float x[chunk];
    float y[chunk];
    float z[chunk];
};

// Of length 1; what has no direction to speak of points straight up.
void normalise(int count, Vectors& vectors) {
    for (int i = 0; i < count; ++i) {
        const float x = vectors.x[i];
        const float y = vectors.y[i];
        const float z = vectors.z[i];
        const float square = x * x + y * y + z * z;
        const bool isLong = square > 1e-12f;
        const float scale = 1.0f / squareRoot(isLong ? square : 1.0f);
        vectors.x[i] = isLong ? x * scale : 0.0f;
        vectors.y[i] = isLong ? y * scale : 0.0f;
        vectors.z[i] = isLong ? z * scale : 1.0f;
    }
}

void load(const float* const* colour, int begin, int count, float slopes, Vectors& vectors) {
    const float* const red = colour[0] + begin;
    const float* const green = colour[1] + begin;
    const float* const blue = colour[2] + begin;
    for (int i = 0; i < count; ++i) {
        vectors.x[i] = (2.0f * red[i] - 1.0f) * slopes;
        vectors.y[i] = (2.0f * green[i] - 1.0f) * slopes;
        vectors.z[i] = 2.0f * blue[i] - 1.0f;
    }
    normalise(count, vectors);
}

// C. Barre-Brisebois and S. Hill, "Blending in Detail", 2012: the detail turned by what turns straight up
// into the base. The turn is not defined for a base that points straight down; close to it the divisor is
// kept from 0.
void turn(const Vectors& base, int count, Vectors& detail) {
    for (int i = 0; i < count; ++i) {
        const float z = base.z[i] + 1.0f;
        const float product = base.y[i] * detail.y[i] + base.x[i] * detail.x[i];
        const float share = (z * detail.z[i] - product) / (z > 1e-6f ? z : 1e-6f);
        detail.x[i] += base.x[i] * share;
        detail.y[i] += base.y[i] * share;
        detail.z[i] = z * share - detail.z[i];
    }
    normalise(count, detail);
}

void store(const float* component, int count, float* __restrict out) {
    for (int i = 0; i < count; ++i) out[i] = component[i] * 0.5f + 0.5f;
}

} // namespace

void normalCombineRow(const float* const* base, const float* const* detail, float strength, int count,
                      float* const* out) {
    Vectors turning;
    Vectors turned;
    for (int begin = 0; begin < count; begin += chunk) {
        const int length = count - begin < chunk ? count - begin : chunk;
        load(base, begin, length, 1.0f, turning);
        load(detail, begin, length, strength, turned);
        turn(turning, length, turned);
        store(turned.x, length, out[0] + begin);
        store(turned.y, length, out[1] + begin);
        store(turned.z, length, out[2] + begin);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
