#include "embedded/rows/BlendRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

inline float choose(bool condition, float then, float otherwise) {
    return condition ? then : otherwise;
}

// The blend functions B(backdrop, source) of each component of W3C, "Compositing and Blending Level 1", 2015;
// add and subtract are the plain operations.
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

// Whole colours, and what the recommendation calls Lum, Sat, SetSat and SetLum.
struct Colour {
    float red, green, blue;
};

inline float least(const Colour& c) {
    return Darken::of(Darken::of(c.red, c.green), c.blue);
}

inline float most(const Colour& c) {
    return Lighten::of(Lighten::of(c.red, c.green), c.blue);
}

inline float luminosityOf(const Colour& c) {
    return 0.3f * c.red + 0.59f * c.green + 0.11f * c.blue;
}

inline float saturationOf(const Colour& c) {
    return most(c) - least(c);
}

inline Colour withSaturation(const Colour& c, float saturation) {
    const float lowest = least(c);
    const float range = most(c) - lowest;
    const float scale = choose(range > 0, saturation, 0.0f) / choose(range > 0, range, 1.0f);
    return {(c.red - lowest) * scale, (c.green - lowest) * scale, (c.blue - lowest) * scale};
}

inline Colour towards(const Colour& c, float luminosity, float scale) {
    return {luminosity + (c.red - luminosity) * scale, luminosity + (c.green - luminosity) * scale,
            luminosity + (c.blue - luminosity) * scale};
}

// Colours that come to lie outside of 0 to 1 are drawn towards their luminosity.
inline Colour withLuminosity(const Colour& c, float luminosity) {
    const float change = luminosity - luminosityOf(c);
    const Colour moved = {c.red + change, c.green + change, c.blue + change};
    const float below = luminosity - least(moved);
    const bool isTooLow = least(moved) < 0 && below > 0;
    const float raising = choose(isTooLow, luminosity, 1.0f) / choose(isTooLow, below, 1.0f);
    const Colour raised = towards(moved, luminosity, raising);
    const float above = most(raised) - luminosity;
    const bool isTooHigh = most(raised) > 1.0f && above > 0;
    const float lowering = choose(isTooHigh, 1.0f - luminosity, 1.0f) / choose(isTooHigh, above, 1.0f);
    return towards(raised, luminosity, lowering);
}

struct TakeHue {
    static Colour of(const Colour& b, const Colour& s) {
        return withLuminosity(withSaturation(s, saturationOf(b)), luminosityOf(b));
    }
};
struct TakeSaturation {
    static Colour of(const Colour& b, const Colour& s) {
        return withLuminosity(withSaturation(b, saturationOf(s)), luminosityOf(b));
    }
};
struct TakeColour {
    static Colour of(const Colour& b, const Colour& s) { return withLuminosity(s, luminosityOf(b)); }
};
struct TakeLuminosity {
    static Colour of(const Colour& b, const Colour& s) { return withLuminosity(b, luminosityOf(s)); }
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

// Puts the blended colours in the foreground's place; what is left to do is the mode normal.
template <typename Mode>
void blendColours(const BlendSources& sources, int count, float* const* out) {
    const int colours = sources.channels == 1 ? 1 : 3;
    float blended[3][chunk];
    for (int begin = 0; begin < count; begin += chunk) {
        const int length = count - begin < chunk ? count - begin : chunk;
        const float* b[4];
        const float* s[4];
        float* to[4];
        for (int c = 0; c < 4; ++c) {
            const int from = c < colours ? c : c < 3 ? 0 : 3;
            const bool isThere = from < colours || sources.channels > 1;
            b[c] = isThere ? sources.background[from] + begin : nullptr;
            s[c] = isThere ? sources.foreground[from] + begin : nullptr;
            to[c] = c < sources.channels ? out[c] + begin : nullptr;
        }
        const bool hasAlpha = sources.channels == 4;
        for (int i = 0; i < length; ++i) {
            const Colour source = {s[0][i], s[1][i], s[2][i]};
            const Colour mixed = Mode::of({b[0][i], b[1][i], b[2][i]}, source);
            const float share = hasAlpha ? b[3][i] : 1.0f;
            blended[0][i] = mix(source.red, mixed.red, share);
            blended[1][i] = mix(source.green, mixed.green, share);
            blended[2][i] = mix(source.blue, mixed.blue, share);
        }
        const float* const foreground[4] = {blended[0], blended[1], blended[2], s[3]};
        const BlendSources rest = {sources.channels, b,
                                   foreground,       sources.mask ? sources.mask + begin : nullptr,
                                   sources.opacity,  sources.hasForegroundAlpha};
        blend<Normal>(rest, length, to);
    }
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
    case BlendMode::Hue:
        return blendColours<TakeHue>(sources, count, out);
    case BlendMode::Saturation:
        return blendColours<TakeSaturation>(sources, count, out);
    case BlendMode::Colour:
        return blendColours<TakeColour>(sources, count, out);
    case BlendMode::Luminosity:
        return blendColours<TakeLuminosity>(sources, count, out);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
