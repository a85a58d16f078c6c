// PNG files.
#pragma once

#include "tools/Picture.h"

#include <string>

namespace tool {

struct PngContent {
    Texture texture;
    std::string receipt; // the text that writePng was given; empty when there is none
};

// The texture's own depth and channels; the receipt, which is ASCII, in a text chunk. Colours that are
// sRGB-encoded are marked so, all other samples carry no mark that would have them converted. The same
// texture and receipt always give the same bytes.
std::string encodePng(const Texture& texture, const std::string& receipt);

// Any kind of PNG: palettes and fewer than eight bits are expanded, all other samples are as they stand.
// Throws Failure, also for pictures larger than maxPictureSide.
PngContent readPng(const std::string& path);

// Atomically.
void writePng(const std::string& path, const Texture& texture, const std::string& receipt);

} // namespace tool
