#include "embedded/engine/TextureEncoding.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/Resample.h"

#include <algorithm>

namespace embedded {
namespace {

int halved(int side) {
    return std::max(1, side / 2);
}

template <typename Channel>
void quantiseRow(const float* in, std::size_t samples, unsigned char* out) {
    constexpr float largest = sizeof(Channel) == 1 ? 255.0f : 65535.0f;
    for (std::size_t i = 0; i < samples; ++i) {
        const auto channel =
            static_cast<Channel>(static_cast<int>(clamp(in[i], 0.0f, 1.0f) * largest + 0.5f));
        std::memcpy(out + i * sizeof(Channel), &channel, sizeof(Channel));
    }
}

// All channels first, which runs several at a time, then alpha, which stays linear, again.
void quantiseSrgbRow(const float* in, std::size_t samples, unsigned char* out) {
    for (std::size_t i = 0; i < samples; ++i)
        out[i] = static_cast<unsigned char>(
            static_cast<int>(srgbFromLinear(clamp(in[i], 0.0f, 1.0f)) * 255.0f + 0.5f));
    for (std::size_t i = 3; i < samples; i += 4)
        out[i] = static_cast<unsigned char>(static_cast<int>(clamp(in[i], 0.0f, 1.0f) * 255.0f + 0.5f));
}

void encodeLevel(const Image& image, PixelFormat format, const BandRunner& runner, unsigned char* bytes) {
    const std::size_t samples = image.rowSamples();
    const std::size_t rowBytes = samples * static_cast<std::size_t>(format.bytesPerChannel);
    runner(image.height(), static_cast<int>(samples), [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            unsigned char* out = bytes + rowBytes * static_cast<std::size_t>(y);
            if (format.srgb) {
                quantiseSrgbRow(image.row(y), samples, out);
            } else if (format.bytesPerChannel == 1) {
                quantiseRow<std::uint8_t>(image.row(y), samples, out);
            } else {
                quantiseRow<std::uint16_t>(image.row(y), samples, out);
            }
        }
    });
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

void encodeTexture(const Image& image, PixelFormat format, int levels, const BandRunner& runner,
                   unsigned char* bytes) {
    Image converted;
    const Image* level = &image;
    if (image.channels() != format.channels) {
        converted = withChannels(image, format.channels);
        level = &converted;
    }
    for (int i = 0; i < levels; ++i) {
        if (i > 0) {
            bytes += textureBytes(level->width(), level->height(), format, 1);
            converted = resampled(*level, halved(level->width()), halved(level->height()));
            level = &converted;
        }
        encodeLevel(*level, format, runner, bytes);
    }
}

} // namespace embedded
