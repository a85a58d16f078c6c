// Pixels: textures as the engine gives them and files hold them, and pictures as people see them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

struct SubstanceTexture_;

namespace tool {

constexpr int maxPictureSide = 16384; // pixels

// Samples interleaved, rows from the top, tightly packed. A sample of two bytes has the high byte first,
// whatever the machine, as in PNG files.
struct Texture {
    int width = 0;
    int height = 0;
    int channels = 4;       // 1 gray; 2 with alpha; 3 red, green, blue; 4 with alpha
    int bytesPerSample = 1; // or 2
    bool isSrgb = false;    // colours are sRGB-encoded; otherwise samples are numbers and mean no colour
    std::vector<unsigned char> samples;

    Texture() = default;
    Texture(int textureWidth, int textureHeight, int channelCount, int sampleBytes, bool hasSrgbColours);
    size_t bytesPerPixel() const {
        return static_cast<size_t>(channels) * static_cast<size_t>(bytesPerSample);
    }
    size_t bytesPerRow() const { return bytesPerPixel() * static_cast<size_t>(width); }
};

// The full-size level of an engine's texture; floats become 16 bits for 0 to 1. Nothing when its format is
// unknown.
std::optional<Texture> copyTexture(const SubstanceTexture_& texture);

std::string digestOf(const Texture& texture); // of the samples alone

std::string describeLayout(const Texture& texture); // such as "16-bit gray"
std::string describeSize(const Texture& texture);   // such as "512 x 256 pixels"

// 8-bit red, green, blue and alpha. Colours are sRGB-encoded, alpha is straight.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> rgba;

    Picture() = default;
    Picture(int pictureWidth, int pictureHeight);
    unsigned char* pixel(int x, int y) { return &rgba[4 * (static_cast<size_t>(y) * width + x)]; }
    const unsigned char* pixel(int x, int y) const { return &rgba[4 * (static_cast<size_t>(y) * width + x)]; }
};

// As screens show it: gray in all colours, the upper eight bits rounded, opaque when there is no alpha.
Picture toPicture(const Texture& texture);
Texture toTexture(const Picture& picture);

} // namespace tool
