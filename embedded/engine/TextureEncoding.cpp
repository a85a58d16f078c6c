#include "embedded/engine/TextureEncoding.h"

#include "embedded/rows/EncodingRows.h"

#include <algorithm>
#include <cstring>

namespace embedded {
namespace {

int halved(int side) {
    return std::max(1, side / 2);
}

void encodeGrayRow(PixelFormat format, const float* in, int count, unsigned char* bytes) {
    if (format.bytesPerChannel == 4)
        std::memcpy(bytes, in, static_cast<std::size_t>(count) * sizeof(float));
    else if (format.bytesPerChannel == 2)
        encodeGray16Row.chosen()(in, count, bytes);
    else
        encodeGray8Row.chosen()(in, count, bytes);
}

} // namespace

int mipmapLevels(int width, int height, std::uint32_t wanted) {
    int levels = 1;
    for (int side = std::max(width, height); side > 1 && static_cast<std::uint32_t>(levels) < wanted;
         side /= 2)
        ++levels;
    return levels;
}

std::size_t textureBytes(int width, int height, PixelFormat format, int levels) {
    std::size_t bytes = 0;
    for (int level = 0; level < levels; ++level, width = halved(width), height = halved(height))
        bytes += static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                 static_cast<std::size_t>(format.bytesPerPixel());
    return bytes;
}

void encodeRow(PixelFormat format, const SourceRow& row, int count, unsigned char* bytes) {
    if (format.channels == 1) return encodeGrayRow(format, row.channels[0], count, bytes);
    if (format.bytesPerChannel == 4)
        encodeColourFloatRow.chosen()(row.channels, count, bytes);
    else if (format.bytesPerChannel == 2)
        encodeColour16Row.chosen()(row.channels, count, bytes);
    else if (format.srgb)
        encodeSrgb8Row.chosen()(row.channels, count, bytes);
    else
        encodeColour8Row.chosen()(row.channels, count, bytes);
}

} // namespace embedded
