#include "embedded/rows/FlowSmearRows.h"

#include "embedded/rows/WrappedRow.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

// Slopes, in heights over the image's shorter side, that are flat ground.
constexpr float flatSlope = 0.1f;

// Some pixels of a row, and how far from them their walks have come.
struct Walkers {
    int x;
    int y;
    int count;
    float dx[smearBlock];
    float dy[smearBlock];
};

// The four pixels around the places of the walkers, as offsets within a plane, and the shares of the right
// and the lower ones.
struct Places {
    int upperLeft[smearBlock];
    int upperRight[smearBlock];
    int lowerLeft[smearBlock];
    int lowerRight[smearBlock];
    float right[smearBlock];
    float lower[smearBlock];
};

// Components from -1 to 1 in steps of 1 / packedOne; a float holds two of them exactly.
constexpr float packedOne = 2047.0f;
constexpr int packedBits = 12;

inline int packed(float component) {
    return roundToInt((component + 1.0f) * packedOne);
}

// A step in the direction of the nearest pixel. Directions are at most 1 long, so walks stay near.
void walk(const Plane& plane, float length, Walkers& walkers) {
    const float* __restrict const directions = plane.samples;
    float* __restrict const dx = walkers.dx;
    float* __restrict const dy = walkers.dy;
    const int lastX = plane.width - 1;
    const int lastY = plane.height - 1;
    const int stride = plane.stride;
    const int x = walkers.x;
    const int y = walkers.y;
    const int count = walkers.count;
    const float scale = length / packedOne;
    for (int i = 0; i < count; ++i) {
        const int column = (x + i + roundToInt(dx[i])) & lastX;
        const int row = (y + roundToInt(dy[i])) & lastY;
        const int direction = static_cast<int>(directions[row * stride + column]);
        dx[i] += scale * (static_cast<float>(direction >> packedBits) - packedOne);
        dy[i] += scale * (static_cast<float>(direction & ((1 << packedBits) - 1)) - packedOne);
    }
}

void findPlaces(const Walkers& walkers, const Plane& plane, Places& places) {
    const int lastX = plane.width - 1;
    const int lastY = plane.height - 1;
    const int stride = plane.stride;
    const int count = walkers.count;
    for (int i = 0; i < count; ++i) {
        const int wholeX = floorToInt(walkers.dx[i]);
        const int wholeY = floorToInt(walkers.dy[i]);
        const int left = (walkers.x + i + wholeX) & lastX;
        const int right = (walkers.x + i + wholeX + 1) & lastX;
        const int upper = ((walkers.y + wholeY) & lastY) * stride;
        const int lower = ((walkers.y + wholeY + 1) & lastY) * stride;
        places.upperLeft[i] = upper + left;
        places.upperRight[i] = upper + right;
        places.lowerLeft[i] = lower + left;
        places.lowerRight[i] = lower + right;
        places.right[i] = walkers.dx[i] - static_cast<float>(wholeX);
        places.lower[i] = walkers.dy[i] - static_cast<float>(wholeY);
    }
}

// Changes each sum by what the source has at its place.
template <typename Take>
void take(const float* __restrict source, const Places& places, int count, float* __restrict sums,
          Take takeSample) {
    for (int i = 0; i < count; ++i) {
        const float above = mix(source[places.upperLeft[i]], source[places.upperRight[i]], places.right[i]);
        const float below = mix(source[places.lowerLeft[i]], source[places.lowerRight[i]], places.right[i]);
        sums[i] = takeSample(sums[i], mix(above, below, places.lower[i]), i);
    }
}

// What is found far away counts less, so that traces fade out.
void takeAlong(SmearResult result, float weight, const float* source, const Places& places,
               const float* __restrict own, int count, float* sums) {
    switch (result) {
    case SmearResult::Mean:
        return take(source, places, count, sums,
                    [weight](float sum, float sample, int) { return sum + weight * sample; });
    case SmearResult::Darkest:
        return take(source, places, count, sums, [weight, own](float least, float sample, int i) {
            const float faded = mix(own[i], sample, weight);
            return faded < least ? faded : least;
        });
    case SmearResult::Lightest:
        return take(source, places, count, sums, [weight, own](float most, float sample, int i) {
            const float faded = mix(own[i], sample, weight);
            return faded > most ? faded : most;
        });
    }
}

} // namespace

void flowDirectionRow(const FlowGround& ground, int y, float* __restrict out) {
    float leftBuffer[smearBlock];
    float rightBuffer[smearBlock];
    const Plane& heights = ground.heights;
    const float scale = ground.scale;
    const bool alongContours = ground.alongContours;
    const float* const above = rowOf(heights, (y - ground.reach) & (heights.height - 1));
    const float* const below = rowOf(heights, (y + ground.reach) & (heights.height - 1));
    for (int x = 0; x < heights.width; x += smearBlock) {
        const int count = heights.width - x < smearBlock ? heights.width - x : smearBlock;
        const float* const left = wrappedRow(heights, y, x - ground.reach, count, leftBuffer);
        const float* const right = wrappedRow(heights, y, x + ground.reach, count, rightBuffer);
        for (int i = 0; i < count; ++i) {
            const float slopeX = scale * (right[i] - left[i]);
            const float slopeY = scale * (below[x + i] - above[x + i]);
            const float size = squareRoot(slopeX * slopeX + slopeY * slopeY + flatSlope * flatSlope);
            const float across = clamp(slopeX / size, -1.0f, 1.0f); // a number even where heights are none
            const float down = clamp(slopeY / size, -1.0f, 1.0f);
            const int first = packed(alongContours ? -down : across);
            const int second = packed(alongContours ? across : down);
            out[x + i] = static_cast<float>((first << packedBits) + second);
        }
    }
}

void flowSmearRow(const FlowWalk& flow, const Plane* source, int channels, int y, int x, int count,
                  float* const* out) {
    const float fading = 1.0f / static_cast<float>(flow.steps + 1);
    const int ways = flow.bothWays ? 2 : 1;
    Walkers walkers;
    Places places;
    walkers.x = x;
    walkers.y = y;
    walkers.count = count;
    for (int c = 0; c < channels; ++c)
        memcpy(out[c], rowOf(source[c], y) + x, sizeof(float) * static_cast<size_t>(count));
    for (int way = 0; way < ways; ++way) {
        const float length = way == 0 ? flow.length : -flow.length;
        for (int i = 0; i < count; ++i) walkers.dx[i] = walkers.dy[i] = 0.0f;
        for (int step = 1; step <= flow.steps; ++step) {
            walk(flow.directions, length, walkers);
            findPlaces(walkers, source[0], places);
            const float weight = 1.0f - fading * static_cast<float>(step);
            for (int c = 0; c < channels; ++c)
                takeAlong(flow.result, weight, source[c].samples, places, rowOf(source[c], y) + x, count,
                          out[c]);
        }
    }
    if (flow.result != SmearResult::Mean) return;
    // The weights of all steps come to steps / 2 for each way.
    const float share = 1.0f / (1.0f + 0.5f * static_cast<float>(flow.steps * ways));
    for (int c = 0; c < channels; ++c)
        for (int i = 0; i < count; ++i) out[c][i] *= share;
}

} // namespace embedded::KVSUBSTANCE_ROWS
