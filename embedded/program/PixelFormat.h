// The pixel formats of output textures and image inputs, by the codes that assemblies and the engine's C
// interface carry. Channels stand in the order red, green, blue, alpha, rows tightly packed; 16-bit channels
// are in the machine's byte order. Integer channels run from 0 to their largest value for 0 to 1; floats are
// the numbers themselves, whatever they are.
//
// code | layout
//    0 | 8-bit RGBA
//   32 | 8-bit RGBA, colours sRGB-encoded (IEC 61966-2-1), alpha linear
//   64 | 16-bit RGBA
//   65 | 8-bit gray
//   66 | 16-bit gray
//   67 | 32-bit float RGBA (outputs only)
//   68 | 32-bit float gray (outputs only)
#pragma once

#include <cstdint>
#include <optional>

namespace embedded {

struct PixelFormat {
    int channels = 4;
    int bytesPerChannel = 1;
    bool srgb = false;

    constexpr int bytesPerPixel() const { return channels * bytesPerChannel; }
};

// Nothing for a code that the engine does not support.
constexpr std::optional<PixelFormat> findPixelFormat(std::int32_t code) {
    switch (code) {
    case 0:
        return PixelFormat{4, 1, false};
    case 32:
        return PixelFormat{4, 1, true};
    case 64:
        return PixelFormat{4, 2, false};
    case 65:
        return PixelFormat{1, 1, false};
    case 66:
        return PixelFormat{1, 2, false};
    case 67:
        return PixelFormat{4, 4, false};
    case 68:
        return PixelFormat{1, 4, false};
    default:
        return std::nullopt;
    }
}

} // namespace embedded
