#pragma once

#include "embedded/rows/RowFunction.h"

#include <stdint.h>

namespace embedded {

enum class WaveProfile { Sine, Triangle, Square, Sawtooth };

// Places count in parts of a period, of which there are lastPart + 1, a power of two up to 2^24.
struct LinearWave {
    WaveProfile profile;
    uint32_t start; // of the segment's first pixel
    uint32_t step;  // from one pixel to the next
    uint32_t lastPart;
    float phase;
    float span; // of a pixel, in periods
};

using LinearWaveRow = void(const LinearWave& wave, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(linearWaveRow, LinearWaveRow)

// Rings and sectors around the origin; distances are 1 at the nearer edges.
struct CentredWave {
    WaveProfile profile;
    float rings;
    float sectors;
    float phase;
    float pixel; // its size
    float y;     // of the row
};

// For pixels at these x.
using CentredWaveRow = void(const CentredWave& wave, const float* x, int count, float* out);
KVSUBSTANCE_ROW_FUNCTION(centredWaveRow, CentredWaveRow)

} // namespace embedded
