#include "embedded/rows/ScatterRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

constexpr int runLength = 64;

// Where some pixels read the pattern: between four samples.
struct Footprint {
    int corner[runLength]; // the upper left sample
    int right[runLength];  // steps to the others
    int below[runLength];
    float across[runLength];
    float down[runLength];
    float coverage[runLength]; // 0 outside the copy, whose edges are as soft as a pixel
};

inline float lesser(float a, float b) {
    return a < b ? a : b;
}

inline void findFootprint(const ScatterCopy& copy, const ScatterPattern& pattern, int y, int x, int count,
                          Footprint& to) {
    const float side = copy.side;
    const float most = lesser(side, 1.0f);
    const float cosine = copy.cosine / side;
    const float sine = copy.sine / side;
    const float middle = copy.x;
    const float dy = static_cast<float>(y) + 0.5f - copy.y;
    const float size = static_cast<float>(pattern.size);
    const int lastIndex = pattern.size - 1;
    const float last = size - 1.0f;
    const int stride = pattern.stride;
    float u[runLength]; // -1/2 to 1/2
    float v[runLength];
    for (int i = 0; i < count; ++i) {
        const float dx = static_cast<float>(x + i) + 0.5f - middle;
        u[i] = dx * cosine + dy * sine;
        v[i] = dy * cosine - dx * sine;
    }
    for (int i = 0; i < count; ++i) {
        const float coverU = clamp((0.5f - absolute(u[i])) * side + 0.5f, 0.0f, most);
        const float coverV = clamp((0.5f - absolute(v[i])) * side + 0.5f, 0.0f, most);
        to.coverage[i] = coverU * coverV;
    }
    for (int i = 0; i < count; ++i) {
        const float place = clamp((u[i] + 0.5f) * size - 0.5f, 0.0f, last);
        const int left = static_cast<int>(place);
        to.across[i] = place - static_cast<float>(left);
        to.corner[i] = left;
        to.right[i] = left < lastIndex ? 1 : 0;
    }
    for (int i = 0; i < count; ++i) {
        const float place = clamp((v[i] + 0.5f) * size - 0.5f, 0.0f, last);
        const int top = static_cast<int>(place);
        to.down[i] = place - static_cast<float>(top);
        to.corner[i] += top * stride;
        to.below[i] = top < lastIndex ? stride : 0;
    }
}

// The pattern's samples, which the coverage weighs.
inline void sample(const float* pattern, const Footprint& at, int count, float* __restrict samples) {
    for (int i = 0; i < count; ++i) {
        const int corner = at.corner[i];
        const int right = at.right[i];
        const int below = at.below[i];
        const float upper = mix(pattern[corner], pattern[corner + right], at.across[i]);
        const float lower = mix(pattern[corner + below], pattern[corner + below + right], at.across[i]);
        samples[i] = mix(upper, lower, at.down[i]) * at.coverage[i];
    }
}

inline void drawSamples(ScatterOverlap overlap, const float* samples, const float* alphas, float brightness,
                        int count, float* __restrict out) {
    if (overlap == ScatterOverlap::Lighten) {
        for (int i = 0; i < count; ++i) {
            const float value = samples[i] * brightness;
            out[i] = value > out[i] ? value : out[i];
        }
    } else if (overlap == ScatterOverlap::Add) {
        for (int i = 0; i < count; ++i) out[i] += samples[i] * brightness;
    } else {
        for (int i = 0; i < count; ++i)
            out[i] = out[i] * (1.0f - clamp(alphas[i], 0.0f, 1.0f)) + samples[i] * brightness;
    }
}

} // namespace

void scatterRow(const ScatterCopy& copy, const ScatterPattern& pattern, ScatterOverlap overlap, int channels,
                int y, int x, int count, float* const* out) {
    Footprint footprint;
    float alphas[runLength];
    float samples[runLength];
    const int last =
        channels - 1; // the alpha; of gray the value itself, which covers as much as it is bright
    for (int begin = 0; begin < count; begin += runLength) {
        const int length = count - begin < runLength ? count - begin : runLength;
        const int at = x + begin;
        findFootprint(copy, pattern, y, at, length, footprint);
        sample(pattern.channels[last], footprint, length, alphas);
        for (int c = 0; c < last; ++c) {
            sample(pattern.channels[c], footprint, length, samples);
            drawSamples(overlap, samples, alphas, copy.brightness, length, out[c] + at);
        }
        drawSamples(overlap, alphas, alphas, last == 0 ? copy.brightness : 1.0f, length, out[last] + at);
    }
}

void premultiplyRow(const float* colour, const float* alpha, int count, float* out) {
    float* __restrict const product = out;
    for (int i = 0; i < count; ++i) product[i] = colour[i] * alpha[i];
}

void unpremultiplyRow(int count, float* const* channels) {
    float* __restrict const red = channels[0];
    float* __restrict const green = channels[1];
    float* __restrict const blue = channels[2];
    float* __restrict const alphas = channels[3];
    for (int i = 0; i < count; ++i) {
        const float alpha = clamp(alphas[i], 0.0f, 1.0f);
        const float factor = alpha > 0.0f ? 1.0f / (alpha > 1e-20f ? alpha : 1e-20f) : 0.0f;
        red[i] = red[i] * factor;
        green[i] = green[i] * factor;
        blue[i] = blue[i] * factor;
        alphas[i] = alpha;
    }
}

void halveSquareRow(const float* upper, const float* lower, const float* upperAlpha, const float* lowerAlpha,
                    int count, float* out) {
    float* __restrict const means = out;
    if (upperAlpha) {
        for (int i = 0; i < count; ++i)
            means[i] =
                0.25f * ((upper[2 * i] * upperAlpha[2 * i] + upper[2 * i + 1] * upperAlpha[2 * i + 1]) +
                         (lower[2 * i] * lowerAlpha[2 * i] + lower[2 * i + 1] * lowerAlpha[2 * i + 1]));
    } else {
        for (int i = 0; i < count; ++i)
            means[i] = 0.25f * ((upper[2 * i] + upper[2 * i + 1]) + (lower[2 * i] + lower[2 * i + 1]));
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
