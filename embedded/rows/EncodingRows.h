// Pixels of a row as texture bytes: values clamped to 0 to 1 and rounded to the nearest step.
#pragma once

#include "embedded/rows/RowFunction.h"

namespace embedded {

using EncodeGrayRow = void(const float* in, int count, unsigned char* out);
KVSUBSTANCE_ROW_FUNCTION(encodeGray8Row, EncodeGrayRow)
KVSUBSTANCE_ROW_FUNCTION(encodeGray16Row, EncodeGrayRow)

// Red, green, blue and alpha to interleaved pixels.
using EncodeColourRow = void(const float* const* in, int count, unsigned char* out);
KVSUBSTANCE_ROW_FUNCTION(encodeColour8Row, EncodeColourRow)
KVSUBSTANCE_ROW_FUNCTION(encodeSrgb8Row, EncodeColourRow) // alpha stays linear
KVSUBSTANCE_ROW_FUNCTION(encodeColour16Row, EncodeColourRow)
KVSUBSTANCE_ROW_FUNCTION(encodeColourFloatRow, EncodeColourRow) // not clamped

} // namespace embedded
