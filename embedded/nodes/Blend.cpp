#include "embedded/nodes/Blend.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

namespace embedded {
namespace {

enum Parameter { Mode, Opacity };
enum Port { Background, Foreground, Mask };

// The blend functions B(backdrop, source) of the recommendation; add and subtract are the plain operations.
struct Normal {
    static float of(float, float s) { return s; }
};
struct Multiply {
    static float of(float b, float s) { return b * s; }
};
struct Screen {
    static float of(float b, float s) { return b + s - b * s; }
};
struct HardLight {
    static float of(float b, float s) { return s <= 0.5f ? b * (2.0f * s) : Screen::of(b, 2.0f * s - 1.0f); }
};
struct Overlay {
    static float of(float b, float s) { return HardLight::of(s, b); }
};
struct Darken {
    static float of(float b, float s) { return b < s ? b : s; }
};
struct Lighten {
    static float of(float b, float s) { return b > s ? b : s; }
};
struct ColourDodge {
    static float of(float b, float s) {
        if (b <= 0) return 0.0f;
        return s >= 1.0f ? 1.0f : Darken::of(1.0f, b / (1.0f - s));
    }
};
struct ColourBurn {
    static float of(float b, float s) {
        if (b >= 1.0f) return 1.0f;
        return s <= 0 ? 0.0f : 1.0f - Darken::of(1.0f, (1.0f - b) / s);
    }
};
struct SoftLight {
    static float of(float b, float s) {
        if (s <= 0.5f) return b - (1.0f - 2.0f * s) * b * (1.0f - b);
        const float curve = b <= 0.25f ? ((16.0f * b - 12.0f) * b + 4.0f) * b : std::sqrt(b);
        return b + (2.0f * s - 1.0f) * (curve - b);
    }
};
struct Difference {
    static float of(float b, float s) { return absolute(b - s); }
};
struct Exclusion {
    static float of(float b, float s) { return b + s - 2.0f * b * s; }
};
struct Add {
    static float of(float b, float s) { return b + s; }
};
struct Subtract {
    static float of(float b, float s) { return b - s; }
};

struct Blending {
    explicit Blending(const NodeRun& run)
        : width(run.width)
        , channels(run.channels)
        , background(run.sources[Background])
        , foreground(run.sources[Foreground])
        , mask(run.sources[Mask])
        , opacity(run.number(Opacity)) {}

    template <typename Mode>
    void grayRow(int y, float* out) const {
        const float* b = background->row(y);
        const float* s = foreground->row(y);
        const float* m = mask ? mask->row(y) : nullptr;
        for (int x = 0; x < width; ++x) {
            const float cover = m ? clamp(m[x], 0.0f, 1.0f) * opacity : opacity;
            out[x] = mix(b[x], Mode::of(b[x], s[x]), cover);
        }
    }

    // Simple alpha compositing, source over: cs = (1 - ab) * Cs + ab * B(Cb, Cs), co = as * cs + (1 - as) *
    // ab * Cb.
    template <typename Mode>
    void colourRow(int y, float* out) const {
        const float* b = background->row(y);
        const float* s = foreground->row(y);
        const float* m = mask ? mask->row(y) : nullptr;
        for (int x = 0; x < width; ++x, b += 4, s += 4, out += 4) {
            const float cover = s[3] * (m ? clamp(m[x], 0.0f, 1.0f) * opacity : opacity);
            const float remaining = (1.0f - cover) * b[3];
            const float alpha = cover + remaining;
            const float scale = alpha > 0 ? 1.0f / alpha : 0.0f;
            for (int c = 0; c < 3; ++c) {
                const float blended = mix(s[c], Mode::of(b[c], s[c]), b[3]);
                out[c] = (cover * blended + remaining * b[c]) * scale;
            }
            out[3] = alpha;
        }
    }

    int width;
    int channels;
    const Image* background;
    const Image* foreground;
    const Image* mask;
    float opacity;
};

template <typename Mode>
std::unique_ptr<RowKernel> prepareMode(const NodeRun& run) {
    const Blending blending(run);
    if (run.channels == 1)
        return makeRowKernel(run, [blending](int y, float* out) { blending.grayRow<Mode>(y, out); });
    return makeRowKernel(run, [blending](int y, float* out) { blending.colourRow<Mode>(y, out); });
}

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    using Prepare = std::unique_ptr<RowKernel> (*)(const NodeRun&);
    static constexpr Prepare modes[] = {
        prepareMode<Normal>,    prepareMode<Multiply>,  prepareMode<Screen>,      prepareMode<Overlay>,
        prepareMode<Darken>,    prepareMode<Lighten>,   prepareMode<ColourDodge>, prepareMode<ColourBurn>,
        prepareMode<HardLight>, prepareMode<SoftLight>, prepareMode<Difference>,  prepareMode<Exclusion>,
        prepareMode<Add>,       prepareMode<Subtract>};
    return modes[run.integer(Mode)](run);
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind blendKind() {
    return {
        6,
        "blend",
        "Foreground over background by a blend mode; results are not clamped.",
        {{"background", PortChannels::Any, true},
         {"foreground", PortChannels::Any, true},
         {"mask", PortChannels::Gray, false}},
        {choice("mode",
                {"normal", "multiply", "screen", "overlay", "darken", "lighten", "colourDodge", "colourBurn",
                 "hardLight", "softLight", "difference", "exclusion", "add", "subtract"},
                0, "blend mode; subtract takes the foreground from the background"),
         number("opacity", ValueType::Float, 1, 0, 1, "multiplies the mask, which is 1 when not connected")},
        ResultChannels::Widest,
        true,
        20,
        &kernel};
}

} // namespace embedded
