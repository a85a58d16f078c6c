#include "embedded/rows/BlendRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

inline float choose(bool condition, float then, float otherwise) {
    return condition ? then : otherwise;
}

// The blend functions B(backdrop, source) of W3C, "Compositing and Blending Level 1", 2015; add and subtract
// are the plain operations.
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
    static float of(float b, float s) {
        return choose(s <= 0.5f, b * (2.0f * s), Screen::of(b, 2.0f * s - 1.0f));
    }
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
        const bool full = s >= 1.0f;
        const float dodged = Darken::of(1.0f, b / choose(full, 1.0f, 1.0f - s));
        return choose(b <= 0, 0.0f, choose(full, 1.0f, dodged));
    }
};
struct ColourBurn {
    static float of(float b, float s) {
        const bool empty = s <= 0;
        const float burned = 1.0f - Darken::of(1.0f, (1.0f - b) / choose(empty, 1.0f, s));
        return choose(b >= 1.0f, 1.0f, choose(empty, 0.0f, burned));
    }
};
struct SoftLight {
    static float of(float b, float s) {
        const float darker = b - (1.0f - 2.0f * s) * b * (1.0f - b);
        const bool low = b <= 0.25f;
        const float root = squareRoot(choose(low, 0.25f, b));
        const float curve = choose(low, ((16.0f * b - 12.0f) * b + 4.0f) * b, root);
        return choose(s <= 0.5f, darker, b + (2.0f * s - 1.0f) * (curve - b));
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

// How much of the foreground shows: pixels of this many fit on the stack.
constexpr int chunk = 256;

template <typename Mode>
void blendEvenly(const float* b, const float* s, float cover, int count, float* __restrict out) {
    for (int i = 0; i < count; ++i) out[i] = mix(b[i], Mode::of(b[i], s[i]), cover);
}

template <typename Mode>
void blendCovered(const float* b, const float* s, const float* cover, int count, float* __restrict out) {
    for (int i = 0; i < count; ++i) out[i] = mix(b[i], Mode::of(b[i], s[i]), cover[i]);
}

// Simple alpha compositing, source over: cs = (1 - ab) * Cs + ab * B(Cb, Cs), co = as * cs + (1 - as) * ab *
// Cb.
template <typename Mode>
void blendOver(const float* b, const float* s, const float* backdropAlpha, const float* cover,
               const float* remaining, const float* scale, int count, float* __restrict out) {
    for (int i = 0; i < count; ++i) {
        const float blended = mix(s[i], Mode::of(b[i], s[i]), backdropAlpha[i]);
        out[i] = (cover[i] * blended + remaining[i] * b[i]) * scale[i];
    }
}

void coverOf(const BlendSources& sources, int begin, int count, float* __restrict cover) {
    const float opacity = sources.opacity;
    if (sources.mask) {
        const float* const mask = sources.mask + begin;
        for (int i = 0; i < count; ++i) cover[i] = clamp(mask[i], 0.0f, 1.0f) * opacity;
    } else {
        for (int i = 0; i < count; ++i) cover[i] = opacity;
    }
    if (!sources.hasForegroundAlpha) return;
    const float* const alpha = sources.foreground[3] + begin;
    for (int i = 0; i < count; ++i) cover[i] = alpha[i] * cover[i];
}

template <typename Mode>
void blendChunk(const BlendSources& sources, int begin, int count, float* const* out) {
    const float* const* const b = sources.background;
    const float* const* const s = sources.foreground;
    float cover[chunk];
    coverOf(sources, begin, count, cover);
    if (sources.channels < 4) {
        for (int c = 0; c < sources.channels; ++c)
            blendCovered<Mode>(b[c] + begin, s[c] + begin, cover, count, out[c] + begin);
        return;
    }
    float remaining[chunk];
    float scale[chunk];
    const float* const backdropAlpha = b[3] + begin;
    float* __restrict const outAlpha = out[3] + begin;
    for (int i = 0; i < count; ++i) {
        remaining[i] = (1.0f - cover[i]) * backdropAlpha[i];
        const float alpha = cover[i] + remaining[i];
        scale[i] = choose(alpha > 0, 1.0f / choose(alpha > 0, alpha, 1.0f), 0.0f);
        outAlpha[i] = alpha;
    }
    for (int c = 0; c < 3; ++c)
        blendOver<Mode>(b[c] + begin, s[c] + begin, backdropAlpha, cover, remaining, scale, count,
                        out[c] + begin);
}

template <typename Mode>
void blend(const BlendSources& sources, int count, float* const* out) {
    if (!sources.mask && !sources.hasForegroundAlpha && sources.channels < 4) {
        for (int c = 0; c < sources.channels; ++c)
            blendEvenly<Mode>(sources.background[c], sources.foreground[c], sources.opacity, count, out[c]);
        return;
    }
    for (int begin = 0; begin < count; begin += chunk)
        blendChunk<Mode>(sources, begin, count - begin < chunk ? count - begin : chunk, out);
}

} // namespace

void blendRow(BlendMode mode, const BlendSources& sources, int count, float* const* out) {
    switch (mode) {
    case BlendMode::Normal:
        return blend<Normal>(sources, count, out);
    case BlendMode::Multiply:
        return blend<Multiply>(sources, count, out);
    case BlendMode::Screen:
        return blend<Screen>(sources, count, out);
    case BlendMode::Overlay:
        return blend<Overlay>(sources, count, out);
    case BlendMode::Darken:
        return blend<Darken>(sources, count, out);
    case BlendMode::Lighten:
        return blend<Lighten>(sources, count, out);
    case BlendMode::ColourDodge:
        return blend<ColourDodge>(sources, count, out);
    case BlendMode::ColourBurn:
        return blend<ColourBurn>(sources, count, out);
    case BlendMode::HardLight:
        return blend<HardLight>(sources, count, out);
    case BlendMode::SoftLight:
        return blend<SoftLight>(sources, count, out);
    case BlendMode::Difference:
        return blend<Difference>(sources, count, out);
    case BlendMode::Exclusion:
        return blend<Exclusion>(sources, count, out);
    case BlendMode::Add:
        return blend<Add>(sources, count, out);
    case BlendMode::Subtract:
        return blend<Subtract>(sources, count, out);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
