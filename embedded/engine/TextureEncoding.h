// Writes images as texture bytes.
#pragma once

#include "embedded/nodes/NodeKernel.h"
#include "embedded/program/PixelFormat.h"

#include <cstddef>
#include <cstdint>

namespace embedded {

// Levels that a texture really has: down to 1 x 1 at most; 0 and 1 wanted are the full size alone.
int mipmapLevels(int width, int height, std::uint32_t wanted);

// Of the levels together, each tightly packed, the largest first.
std::size_t textureBytes(int width, int height, PixelFormat format, int levels);

// Encodes pixels of a row; gray formats read the first channel, others all four.
void encodeRow(PixelFormat format, const SourceRow& row, int count, unsigned char* bytes);

} // namespace embedded
