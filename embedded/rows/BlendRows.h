#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

// The order is that of the node's choices.
enum class BlendMode {
    Normal,
    Multiply,
    Screen,
    Overlay,
    Darken,
    Lighten,
    ColourDodge,
    ColourBurn,
    HardLight,
    SoftLight,
    Difference,
    Exclusion,
    Add,
    Subtract,
    Hue, // this one and those behind it work on whole colours
    Saturation,
    Colour,
    Luminosity
};

struct BlendSources {
    int channels; // of the result: 1, 3 where the background is opaque, else 4; colours come with 4
    const float* const* background;
    const float* const* foreground;
    const float* mask; // null: 1 everywhere
    float opacity;
    bool hasForegroundAlpha;
};

using BlendRow = void(BlendMode mode, const BlendSources& sources, int count, float* const* out);
KVSUBSTANCE_ROW_FUNCTION(blendRow, BlendRow)

} // namespace embedded
