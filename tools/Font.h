// A small bitmap font for labels.
#pragma once

#include "tools/Picture.h"

#include <string_view>

namespace tool {

constexpr int fontAdvance = 6; // font pixels from one character to the next
constexpr int fontHeight = 9;  // font pixels: seven above the base line, two below

// Draws one line of text with its upper left corner at x, y; each font pixel is a square of scale pixels.
// Characters that are not printable ASCII are drawn as "?". What lies outside the picture is left out.
void drawText(Picture& picture, int x, int y, int scale, std::string_view text, unsigned char gray);

} // namespace tool
