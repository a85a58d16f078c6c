// Colours that are parameters.
#pragma once

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"

#include <array>

namespace embedded {

// The encoding is the value of an encodingParameter: 0 linear, 1 sRGB. Alpha is never encoded.
inline std::array<float, 4> linearColour(const Value& value, int encoding) {
    std::array<float, 4> colour = value.floats;
    if (encoding == 0) return colour;
    for (std::size_t c = 0; c < 3; ++c) colour[c] = linearFromSrgb(colour[c]);
    return colour;
}

// One value in a whole row: its first component in a gray one.
inline void fillRow(float* row, const NodeRun& run, const std::array<float, 4>& value) {
    for (int x = 0; x < run.width; ++x)
        for (int c = 0; c < run.channels; ++c) *row++ = value[static_cast<std::size_t>(c)];
}

} // namespace embedded
