// Pictures, and PNG files of them.
#pragma once

#include <string>
#include <vector>

namespace tool {

// 8-bit red, green, blue and alpha, interleaved; rows from the top, tightly packed. Colours are sRGB-encoded,
// alpha is straight.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> rgba;

    Picture() = default;
    Picture(int pictureWidth, int pictureHeight);
    unsigned char* pixel(int x, int y) { return &rgba[4 * (static_cast<size_t>(y) * width + x)]; }
    const unsigned char* pixel(int x, int y) const { return &rgba[4 * (static_cast<size_t>(y) * width + x)]; }
};

constexpr int maxPictureSide = 16384; // pixels

// The same picture always gives the same bytes.
std::string encodePng(const Picture& picture);

// Any kind of PNG, converted. Throws Failure, also for pictures larger than maxPictureSide.
Picture readPng(const std::string& path);

// Atomically.
void writePng(const std::string& path, const Picture& picture);

} // namespace tool
