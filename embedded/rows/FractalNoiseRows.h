#pragma once

#include "embedded/rows/RowFunction.h"

#include <stdint.h>

namespace embedded {

// Random unit vectors at corners [first, first + count) of a row of lattice cells; the columns wrap around.
// At most columns + 2 corners in all.
using GradientRow = void(uint32_t seed, int row, int columns, int first, int count, float* x, float* y);
KVSUBSTANCE_ROW_FUNCTION(gradientRow, GradientRow)

// One octave at one row of pixels. Lattice cells count from the row's first one.
struct NoiseOctave {
    const float* places;    // of the row's pixels in their cells
    const float* fades;     // of these places
    const int* firstPixels; // of the cells
    const float* upperX;    // gradients at the cells' corners
    const float* upperY;
    const float* lowerX;
    const float* lowerY;
    float place;     // of the row in its cells
    float scale;     // brings the noise to its amplitude, of ridges to -1 to 1
    float amplitude; // of ridges
};

enum class NoiseStyle { Plain, Turbulence, Ridged };

struct NoiseSum {
    NoiseStyle style;
    float factor;
    float middle;
};

// The cells that a segment meets: for each octave the first one and behind the last one.
struct NoiseCells {
    int begin;
    int end;
};

// For pixels [x, x + count) of a row, the octaves' sum times the factor plus the middle, from 0 to 1. The
// corners have room for two numbers for each corner of the segment's cells, the weights for one for each
// pixel.
using FractalNoiseRow = void(const NoiseSum& sum, const NoiseOctave* octaves, const NoiseCells* cells,
                             int octaveCount, int x, int count, float* corners, float* weights, float* out);
KVSUBSTANCE_ROW_FUNCTION(fractalNoiseRow, FractalNoiseRow)

} // namespace embedded
