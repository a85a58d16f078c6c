#include "embedded/rows/HueSaturationLightnessRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

constexpr int chunk = 256;

// A. R. Smith's hexagon of hues with lightness, "Color Gamut Transform Pairs", 1978. Hue counts in sixths of
// a turn from red; chroma is the largest minus the smallest component.
struct Shades {
    float hue[chunk];
    float chroma[chunk];
    float lightness[chunk];
};

// Divisors of nothing are 1, so that there are no branches.
void findShades(const float* reds, const float* greens, const float* blues, int count,
                Shades& __restrict shades) {
    for (int i = 0; i < count; ++i) {
        const float red = clamp(reds[i], 0.0f, 1.0f);
        const float green = clamp(greens[i], 0.0f, 1.0f);
        const float blue = clamp(blues[i], 0.0f, 1.0f);
        const float warm = red > green ? red : green;
        const float cold = red < green ? red : green;
        const float largest = warm > blue ? warm : blue;
        const float smallest = cold < blue ? cold : blue;
        const float chroma = largest - smallest;
        const bool isRed = largest == red;
        const bool isGreen = largest == green;
        const float minuend = isRed ? green : isGreen ? blue : red;
        const float subtrahend = isRed ? blue : isGreen ? red : green;
        const float third = isRed ? 0.0f : isGreen ? 2.0f : 4.0f;
        shades.hue[i] = (minuend - subtrahend) / (chroma > 0 ? chroma : 1.0f) + third;
        shades.chroma[i] = chroma;
        shades.lightness[i] = 0.5f * (largest + smallest);
    }
}

inline float largestChroma(float lightness) {
    return 1.0f - absolute(2.0f * lightness - 1.0f);
}

// The hue ends between -3 and 3.
void changeShades(const HueChange& change, int count, Shades& shades) {
    const HueChange c = change;
    for (int i = 0; i < count; ++i) {
        const float possible = largestChroma(shades.lightness[i]);
        const float divisor = possible > 0 ? possible : 1.0f;
        const float part = possible > 0 ? shades.chroma[i] : 0.0f;
        const float share = clamp(part / divisor * c.saturation, 0.0f, 1.0f);
        const float level = clamp(shades.lightness[i] * c.lightness, 0.0f, 1.0f);
        shades.chroma[i] = share * largestChroma(level);
        shades.lightness[i] = level;
        const float turns = (shades.hue[i] + c.shift) * (1.0f / 6);
        shades.hue[i] = 6.0f * (turns - static_cast<float>(roundToInt(turns)));
    }
}

// A component is 1/2 above to 1/2 below the lightness by how far the hue is from the component's own.
void storeComponents(const Shades& shades, int count, float* __restrict red, float* __restrict green,
                     float* __restrict blue) {
    for (int i = 0; i < count; ++i) {
        const float fromRed = absolute(shades.hue[i]);
        const float fromGreen = absolute(shades.hue[i] - 2.0f);
        const float fromBlue = absolute(shades.hue[i] + 2.0f);
        const float nearGreen = fromGreen < 3.0f ? fromGreen : 6.0f - fromGreen;
        const float nearBlue = fromBlue < 3.0f ? fromBlue : 6.0f - fromBlue;
        red[i] = shades.lightness[i] + shades.chroma[i] * clamp(1.5f - fromRed, -0.5f, 0.5f);
        green[i] = shades.lightness[i] + shades.chroma[i] * clamp(1.5f - nearGreen, -0.5f, 0.5f);
        blue[i] = shades.lightness[i] + shades.chroma[i] * clamp(1.5f - nearBlue, -0.5f, 0.5f);
    }
}

} // namespace

void hueSaturationLightnessRow(const HueChange& change, const float* const* in, int count,
                               float* const* out) {
    Shades shades;
    for (int begin = 0; begin < count; begin += chunk) {
        const int length = count - begin < chunk ? count - begin : chunk;
        findShades(in[0] + begin, in[1] + begin, in[2] + begin, length, shades);
        changeShades(change, length, shades);
        storeComponents(shades, length, out[0] + begin, out[1] + begin, out[2] + begin);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
