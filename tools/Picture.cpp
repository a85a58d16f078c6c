#include "tools/Picture.h"

#include "embedded/program/PixelFormat.h"
#include "platform/engine.h"
#include "tools/Digest.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace tool {
namespace {

std::uint16_t inSixteenBits(std::uint16_t sample) {
    return sample;
}

std::uint16_t inSixteenBits(float sample) {
    if (!(sample > 0)) return 0; // NaN as well
    return sample < 1 ? static_cast<std::uint16_t>(sample * 65535.0f + 0.5f) : 65535;
}

// From the machine's byte order to the high byte first.
template <class Sample>
void copyWideSamples(const unsigned char* from, std::vector<unsigned char>& samples) {
    for (size_t i = 0; i < samples.size(); i += 2, from += sizeof(Sample)) {
        Sample sample;
        std::memcpy(&sample, from, sizeof sample);
        const std::uint16_t wide = inSixteenBits(sample);
        samples[i] = static_cast<unsigned char>(wide >> 8);
        samples[i + 1] = static_cast<unsigned char>(wide & 255);
    }
}

unsigned char sampleInEightBits(const Texture& texture, size_t index) {
    if (texture.bytesPerSample == 1) return texture.samples[index];
    const int sample = texture.samples[2 * index] * 256 + texture.samples[2 * index + 1];
    return static_cast<unsigned char>((sample + 128) / 257);
}

} // namespace

Texture::Texture(int textureWidth, int textureHeight, int channelCount, int sampleBytes, bool hasSrgbColours)
    : width(textureWidth)
    , height(textureHeight)
    , channels(channelCount)
    , bytesPerSample(sampleBytes)
    , isSrgb(hasSrgbColours)
    , samples(bytesPerRow() * static_cast<size_t>(textureHeight)) {}

Picture::Picture(int pictureWidth, int pictureHeight)
    : width(pictureWidth)
    , height(pictureHeight)
    , rgba(4 * static_cast<size_t>(pictureWidth) * static_cast<size_t>(pictureHeight)) {}

std::optional<Texture> copyTexture(const SubstanceTexture_& texture) {
    const auto format = embedded::findPixelFormat(texture.pixelFormat);
    if (!format || !texture.buffer) return std::nullopt;
    Texture copy(texture.level0Width, texture.level0Height, format->channels,
                 std::min(format->bytesPerChannel, 2), format->srgb);
    const auto* const bytes = static_cast<const unsigned char*>(texture.buffer);
    if (format->bytesPerChannel == 1)
        copy.samples.assign(bytes, bytes + copy.samples.size());
    else if (format->bytesPerChannel == 2)
        copyWideSamples<std::uint16_t>(bytes, copy.samples);
    else
        copyWideSamples<float>(bytes, copy.samples);
    return copy;
}

std::string digestOf(const Texture& texture) {
    return digestOf({reinterpret_cast<const char*>(texture.samples.data()), texture.samples.size()});
}

std::string describeLayout(const Texture& texture) {
    static const char* const names[] = {"gray", "gray and alpha", "RGB", "RGBA"};
    return std::to_string(8 * texture.bytesPerSample) + "-bit " + names[texture.channels - 1] +
           (texture.isSrgb ? ", sRGB" : "");
}

std::string describeSize(const Texture& texture) {
    return std::to_string(texture.width) + " x " + std::to_string(texture.height) + " pixels";
}

Picture toPicture(const Texture& texture) {
    Picture picture(texture.width, texture.height);
    const auto channels = static_cast<size_t>(texture.channels);
    const bool isGray = channels < 3;
    const bool hasAlpha = channels % 2 == 0;
    for (size_t i = 0; i < picture.rgba.size() / 4; ++i) {
        for (size_t c = 0; c < 3; ++c)
            picture.rgba[4 * i + c] = sampleInEightBits(texture, channels * i + (isGray ? 0 : c));
        picture.rgba[4 * i + 3] = hasAlpha ? sampleInEightBits(texture, channels * i + channels - 1)
                                           : static_cast<unsigned char>(255);
    }
    return picture;
}

Texture toTexture(const Picture& picture) {
    Texture texture(picture.width, picture.height, 4, 1, true);
    texture.samples = picture.rgba;
    return texture;
}

} // namespace tool
