#include "embedded/rows/AmbientOcclusionRows.h"

#include "embedded/rows/WrappedRow.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

constexpr int blockSize = 256;

// Pixels [x, x + count) of a row of the image of four times the size, interpolated linearly. The place x is a
// multiple of 4, and so is the count.
void quadruple(const Plane& image, int y, int x, int count, float* __restrict out) {
    constexpr float shares[4] = {0.375f, 0.125f, 0.125f, 0.375f};
    constexpr int columns = blockSize / 4 + 2;
    float nearBuffer[columns];
    float farBuffer[columns];
    float column[columns] = {};
    const int small = count / 4;
    const int phase = y & 3;
    const float share = shares[phase];
    const float* const near = wrappedRow(image, y >> 2, (x >> 2) - 1, small + 2, nearBuffer);
    const float* const far =
        wrappedRow(image, (y >> 2) + (phase < 2 ? -1 : 1), (x >> 2) - 1, small + 2, farBuffer);
    for (int i = 0; i < small + 2; ++i) column[i] = (1.0f - share) * near[i] + share * far[i];
    for (int i = 0; i < small; ++i) {
        out[4 * i] = 0.625f * column[i + 1] + 0.375f * column[i];
        out[4 * i + 1] = 0.875f * column[i + 1] + 0.125f * column[i];
        out[4 * i + 2] = 0.875f * column[i + 1] + 0.125f * column[i + 2];
        out[4 * i + 3] = 0.625f * column[i + 1] + 0.375f * column[i + 2];
    }
}

// Raises the tangents to those of the places along a ray, for pixels [x, x + count) of row y.
void lookAlong(const Horizons& horizons, const HorizonPlace* places, int y, int x, int count,
               float* __restrict tangents) {
    float buffer[blockSize];
    const float* const heights = rowOf(horizons.heights, y) + x;
    for (int step = 0; step < horizons.steps; ++step) {
        const HorizonPlace& place = places[step];
        const float* const there = wrappedRow(horizons.heights, y + place.y, x + place.x, count, buffer);
        for (int i = 0; i < count; ++i) {
            const float tangent = place.scale * (there[i] - heights[i]);
            tangents[i] = tangent > tangents[i] ? tangent : tangents[i];
        }
    }
}

// How much higher the ground is than the image of a quarter of the size says.
void findRise(const Horizons& horizons, int y, int x, int count, float* __restrict rise) {
    const float* const heights = rowOf(horizons.heights, y) + x;
    quadruple(horizons.farther->heights, y, x, count, rise);
    for (int i = 0; i < count; ++i) rise[i] = clamp(heights[i] - rise[i], 0.0f, 1e30f);
}

void findHorizon(const Horizons& horizons, const float* __restrict rise, int direction, int y, int x,
                 int count, float* __restrict tangents) {
    float farther[blockSize];
    float ray[blockSize];
    if (horizons.farther) {
        const float lowering = horizons.farther->lowering;
        quadruple(horizons.farther->tangents[direction], y, x, count, farther);
        for (int i = 0; i < count; ++i) {
            const float lowered = farther[i] - lowering * rise[i];
            farther[i] = lowered > 0.0f ? lowered : 0.0f;
        }
    } else {
        for (int i = 0; i < count; ++i) farther[i] = 0.0f;
    }
    const float share = 1.0f / static_cast<float>(horizons.rays);
    for (int i = 0; i < count; ++i) tangents[i] = 0.0f;
    for (int r = 0; r < horizons.rays; ++r) {
        for (int i = 0; i < count; ++i) ray[i] = farther[i];
        lookAlong(horizons, horizons.places[direction][r], y, x, count, ray);
        for (int i = 0; i < count; ++i) tangents[i] += share * ray[i];
    }
}

} // namespace

void quarterRow(const Plane& image, int y, float* __restrict out) {
    const float* const rows[4] = {rowOf(image, 4 * y), rowOf(image, 4 * y + 1), rowOf(image, 4 * y + 2),
                                  rowOf(image, 4 * y + 3)};
    const int count = image.width / 4;
    for (int x = 0; x < count; ++x) {
        float sum = 0.0f;
        for (const float* const row : rows)
            sum += (row[4 * x] + row[4 * x + 1]) + (row[4 * x + 2] + row[4 * x + 3]);
        out[x] = sum * 0.0625f;
    }
}

void horizonRow(const Horizons& horizons, int y, float* const* out) {
    float rise[blockSize] = {};
    const int width = horizons.heights.width;
    for (int x = 0; x < width; x += blockSize) {
        const int count = width - x < blockSize ? width - x : blockSize;
        if (horizons.farther) findRise(horizons, y, x, count, rise);
        for (int direction = 0; direction < horizonDirections; ++direction)
            findHorizon(horizons, rise, direction, y, x, count, out[direction] + x);
    }
}

// Under an even sky the light on level ground that comes from one direction is, above an elevation e, the
// square of cos e, which is 1 / (1 + tan^2 e).
void occlusionRow(const Horizons& horizons, float strength, int y, float* __restrict out) {
    float rise[blockSize] = {};
    float tangents[blockSize];
    float light[blockSize];
    const int width = horizons.heights.width;
    for (int x = 0; x < width; x += blockSize) {
        const int count = width - x < blockSize ? width - x : blockSize;
        if (horizons.farther) findRise(horizons, y, x, count, rise);
        for (int i = 0; i < count; ++i) light[i] = 0.0f;
        for (int direction = 0; direction < horizonDirections; ++direction) {
            findHorizon(horizons, rise, direction, y, x, count, tangents);
            for (int i = 0; i < count; ++i) light[i] += 1.0f / (1.0f + tangents[i] * tangents[i]);
        }
        for (int i = 0; i < count; ++i)
            out[x + i] = clamp(1.0f - strength * (1.0f - light[i] * (1.0f / horizonDirections)), 0.0f, 1.0f);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
