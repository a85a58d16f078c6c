// Finished images as the bytes of a texture.
#pragma once

#include "embedded/engine/Bands.h"
#include "embedded/nodes/Image.h"
#include "embedded/program/PixelFormat.h"

#include <cstddef>
#include <cstdint>

namespace embedded {

// How many of the wanted levels there are: at least 1; the last possible one is a single pixel.
int mipmapLevels(int width, int height, std::uint32_t wanted);

std::size_t textureBytes(int width, int height, PixelFormat format, int levels);

// Writes the levels, full size first; each is the one before halved by a 2 x 2 box in linear light. Values
// are clamped to 0 to 1 and rounded to the nearest step.
void encodeTexture(const Image& image, PixelFormat format, int levels, const BandRunner& runner,
                   unsigned char* bytes);

} // namespace embedded
