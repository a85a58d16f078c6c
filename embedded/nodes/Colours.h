// Colours that are parameters.
#pragma once

#include "embedded/nodes/Value.h"
#include "embedded/rows/Arithmetic.h"

#include <array>

namespace embedded {

// The encoding is the value of an encodingParameter: 0 linear, 1 sRGB. Alpha is never encoded.
inline std::array<float, 4> linearColour(const Value& value, int encoding) {
    std::array<float, 4> colour = value.floats;
    if (encoding == 0) return colour;
    for (std::size_t c = 0; c < 3; ++c) colour[c] = linearFromSrgb(colour[c]);
    return colour;
}

} // namespace embedded
