#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

enum class ScatterOverlap { Lighten, Add, Over };

// What copies are drawn from: a square image. Colours are premultiplied.
struct ScatterPattern {
    const float* channels[4];
    int stride; // from one row to the next
    int size;
};

// One copy, in pixels of the result.
struct ScatterCopy {
    float x; // its middle
    float y;
    float side;
    float cosine; // of its turn
    float sine;
    float brightness;
};

// Draws pixels [x, x + count) of a copy over what there is in row y; 1 or 4 channels.
using ScatterRow = void(const ScatterCopy& copy, const ScatterPattern& pattern, ScatterOverlap overlap,
                        int channels, int y, int x, int count, float* const* out);
KVSUBSTANCE_ROW_FUNCTION(scatterRow, ScatterRow)

// Colours that alpha weighs, and back. Alpha is brought to 0 to 1 on the way back.
using PremultiplyRow = void(const float* colour, const float* alpha, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(premultiplyRow, PremultiplyRow)
using UnpremultiplyRow = void(int count, float* const* channels);
KVSUBSTANCE_ROW_FUNCTION(unpremultiplyRow, UnpremultiplyRow)

// The means of 2 x 2 pixels, of which count come out. With alphas, of premultiplied ones.
using HalveSquareRow = void(const float* upper, const float* lower, const float* upperAlpha,
                            const float* lowerAlpha, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(halveSquareRow, HalveSquareRow)

} // namespace embedded
