#include "embedded/nodes/HueSaturationLightness.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

namespace embedded {
namespace {

enum Parameter { Hue, Saturation, Lightness };

// A. R. Smith's hexagon of hues with lightness, "Color Gamut Transform Pairs", 1978. Hue counts in sixths of
// a turn from red; chroma is the largest minus the smallest component.
struct Shade {
    explicit Shade(const float* colour) {
        const float red = clamp(colour[0], 0.0f, 1.0f);
        const float green = clamp(colour[1], 0.0f, 1.0f);
        const float blue = clamp(colour[2], 0.0f, 1.0f);
        const float warm = red > green ? red : green;
        const float cold = red < green ? red : green;
        const float largest = warm > blue ? warm : blue;
        const float smallest = cold < blue ? cold : blue;
        chroma = largest - smallest;
        lightness = 0.5f * (largest + smallest);
        if (chroma <= 0) return;
        hue = largest == red     ? (green - blue) / chroma
              : largest == green ? (blue - red) / chroma + 2.0f
                                 : (red - green) / chroma + 4.0f;
    }

    float hue = 0;
    float chroma = 0;
    float lightness = 0;
};

float largestChroma(float lightness) {
    return 1.0f - absolute(2.0f * lightness - 1.0f);
}

struct Change {
    void apply(const float* in, float* out) const {
        const Shade shade(in);
        const float possible = largestChroma(shade.lightness);
        const float share = possible > 0 ? clamp(shade.chroma / possible * saturation, 0.0f, 1.0f) : 0.0f;
        const float level = clamp(shade.lightness * lightness, 0.0f, 1.0f);
        const float chroma = share * largestChroma(level);
        const float sixths = shade.hue + shift;
        out[0] = level + chroma * swing(sixths);
        out[1] = level + chroma * swing(sixths - 2.0f);
        out[2] = level + chroma * swing(sixths - 4.0f);
        out[3] = in[3];
    }

    // How far a component is from the lightness, -1/2 to 1/2, by how far the hue is from the component's.
    static float swing(float sixths) {
        const float turns = sixths * (1.0f / 6);
        const float apart = 6.0f * absolute(turns - static_cast<float>(roundToInt(turns)));
        return clamp(1.5f - apart, -0.5f, 0.5f);
    }

    float shift; // in sixths of a turn
    float saturation;
    float lightness;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const Change change{6.0f * run.number(Hue), run.number(Saturation), run.number(Lightness)};
    return makeRowKernel(run, [source = run.sources[0], change](int y, float* out) {
        const float* in = source->row(y);
        for (int x = 0; x < source->width(); ++x) change.apply(in + 4 * x, out + 4 * x);
    });
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind hueSaturationLightnessKind() {
    return {19,
            "hueSaturationLightness",
            "Shifts the hue, scales saturation and lightness; alpha stays. Colours are clamped to 0 to 1.",
            {{"source", PortChannels::Colour, true}},
            {number("hue", ValueType::Float, 0, -1, 1, "turns from red over green and blue back to red"),
             number("saturation", ValueType::Float, 1, 0, 16, "factor; 0 gives gray"),
             number("lightness", ValueType::Float, 1, 0, 16, "factor; 0 gives black")},
            ResultChannels::Colour,
            true,
            50,
            &kernel};
}

} // namespace embedded
