#include "embedded/engine/TextureDecoding.h"

#include "embedded/engine/NodeResolution.h"
#include "embedded/program/PixelFormat.h"
#include "embedded/rows/Arithmetic.h"

#include <array>
#include <cstring>

namespace embedded {
namespace {

std::array<float, 256> srgbTable() {
    std::array<float, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = linearFromSrgb(static_cast<float>(i) / 255.0f);
    return table;
}

// Calls decode(value, channel) for each channel of each pixel of the first image channels.
template <typename Channel, typename Decode>
void decodeChannels(const unsigned char* bytes, int channelsInTexture, Image& image, Decode decode) {
    for (int y = 0; y < image.height(); ++y) {
        for (int c = 0; c < image.channels(); ++c) {
            const unsigned char* in = bytes + static_cast<std::size_t>(c) * sizeof(Channel);
            float* const out = image.row(y, c);
            for (int x = 0; x < image.width(); ++x) {
                Channel channel;
                std::memcpy(&channel, in, sizeof(Channel));
                in += static_cast<std::size_t>(channelsInTexture) * sizeof(Channel);
                out[x] = decode(channel, c);
            }
        }
        bytes += static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(channelsInTexture) *
                 sizeof(Channel);
    }
}

template <typename Channel>
void decodeLinear(const unsigned char* bytes, int channelsInTexture, Image& image) {
    constexpr float largest = sizeof(Channel) == 1 ? 255.0f : 65535.0f;
    decodeChannels<Channel>(bytes, channelsInTexture, image,
                            [](Channel channel, int) { return static_cast<float>(channel) / largest; });
}

void decodeSrgb(const unsigned char* bytes, int channelsInTexture, Image& image) {
    static const std::array<float, 256> table = srgbTable();
    decodeChannels<std::uint8_t>(bytes, channelsInTexture, image, [](std::uint8_t channel, int c) {
        return c == 3 ? static_cast<float>(channel) / 255.0f : table[channel];
    });
}

// Opaque colours are kept without alpha.
bool isOpaque(const unsigned char* bytes, std::size_t pixels, PixelFormat format) {
    const auto pixelBytes = static_cast<std::size_t>(format.bytesPerPixel());
    const auto channelBytes = static_cast<std::size_t>(format.bytesPerChannel);
    unsigned char all = 0xff;
    for (std::size_t i = 0; i < pixels; ++i)
        for (std::size_t b = 0; b < channelBytes; ++b) all &= bytes[(i + 1) * pixelBytes - 1 - b];
    return all == 0xff;
}

} // namespace

std::optional<std::shared_ptr<const Image>> decodeTexture(const SubstanceTextureInput* texture) {
    if (!texture || !texture->pixels) return std::shared_ptr<const Image>();
    const auto format = findPixelFormat(texture->pixelFormat);
    constexpr int largestSide = 1 << maximumLog2Side;
    const int width = texture->level0Width;
    const int height = texture->level0Height;
    if (!format || format->bytesPerChannel == 4 || texture->channelsOrder != 0) return std::nullopt;
    if (width == 0 || height == 0 || width > largestSide || height > largestSide) return std::nullopt;

    const auto* bytes = static_cast<const unsigned char*>(texture->pixels);
    const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    const bool dropsAlpha = format->channels == 4 && isOpaque(bytes, pixels, *format);
    auto image = std::make_shared<Image>(width, height, dropsAlpha ? 3 : format->channels);
    if (format->srgb) {
        decodeSrgb(bytes, format->channels, *image);
    } else if (format->bytesPerChannel == 1) {
        decodeLinear<std::uint8_t>(bytes, format->channels, *image);
    } else {
        decodeLinear<std::uint16_t>(bytes, format->channels, *image);
    }
    return image;
}

} // namespace embedded
