#include "embedded/engine/TextureDecoding.h"

#include "embedded/engine/NodeEvaluation.h"
#include "embedded/nodes/Arithmetic.h"
#include "embedded/program/PixelFormat.h"

#include <array>
#include <cstring>

namespace embedded {
namespace {

std::array<float, 256> srgbTable() {
    std::array<float, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = linearFromSrgb(static_cast<float>(i) / 255.0f);
    return table;
}

void decodeSrgb(const unsigned char* bytes, std::size_t samples, float* out) {
    static const std::array<float, 256> table = srgbTable();
    for (std::size_t i = 0; i < samples; ++i)
        out[i] = i % 4 == 3 ? static_cast<float>(bytes[i]) / 255.0f : table[bytes[i]];
}

template <typename Channel>
void decodeLinear(const unsigned char* bytes, std::size_t samples, float* out) {
    constexpr float largest = sizeof(Channel) == 1 ? 255.0f : 65535.0f;
    for (std::size_t i = 0; i < samples; ++i) {
        Channel channel;
        std::memcpy(&channel, bytes + i * sizeof(Channel), sizeof(Channel));
        out[i] = static_cast<float>(channel) / largest;
    }
}

} // namespace

std::optional<std::shared_ptr<const Image>> decodeTexture(const SubstanceTextureInput* texture) {
    if (!texture || !texture->pixels) return std::shared_ptr<const Image>();
    const auto format = findPixelFormat(texture->pixelFormat);
    constexpr int largestSide = 1 << maximumLog2Side;
    const int width = texture->level0Width;
    const int height = texture->level0Height;
    if (!format || texture->channelsOrder != 0) return std::nullopt;
    if (width == 0 || height == 0 || width > largestSide || height > largestSide) return std::nullopt;

    auto image = std::make_shared<Image>(width, height, format->channels);
    const auto* bytes = static_cast<const unsigned char*>(texture->pixels);
    if (format->srgb) {
        decodeSrgb(bytes, image->sampleCount(), image->row(0));
    } else if (format->bytesPerChannel == 1) {
        decodeLinear<std::uint8_t>(bytes, image->sampleCount(), image->row(0));
    } else {
        decodeLinear<std::uint16_t>(bytes, image->sampleCount(), image->row(0));
    }
    return image;
}

} // namespace embedded
