// Textures as bytes: encodings, levels, and the way back.
#include "embedded/engine/TextureDecoding.h"
#include "embedded/engine/TextureEncoding.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

using namespace embedded;

namespace {

std::vector<unsigned char> encoded(const Image& image, int format, std::uint32_t wantedLevels = 1) {
    const PixelFormat pixelFormat = *findPixelFormat(format);
    const int levels = mipmapLevels(image.width(), image.height(), wantedLevels);
    std::vector<unsigned char> bytes(textureBytes(image.width(), image.height(), pixelFormat, levels));
    encodeTexture(image, pixelFormat, levels, runInOneBand, bytes.data());
    return bytes;
}

std::vector<unsigned char> encodedPixel(std::vector<float> channels, int format) {
    Image image(1, 1, static_cast<int>(channels.size()));
    std::copy(channels.begin(), channels.end(), image.row(0));
    return encoded(image, format);
}

TEST(Texture, encodesEachFormat) {
    using Bytes = std::vector<unsigned char>;
    EXPECT_EQ(encodedPixel({0, 0.5f, 1, 0.25f}, 0), (Bytes{0, 128, 255, 64}));
    EXPECT_EQ(encodedPixel({0, 0.5f, 1, 0.5f}, 32), (Bytes{0, 188, 255, 128}));
    EXPECT_EQ(encodedPixel({0.0031308f, 0.2158605f, 0.002f, 1}, 32), (Bytes{10, 128, 7, 255}));
    EXPECT_EQ(encodedPixel({-3, 7, 0.2f, 1}, 0), (Bytes{0, 255, 51, 255}));
    EXPECT_EQ(encodedPixel({0.2f}, 0), (Bytes{51, 51, 51, 255}));
    EXPECT_EQ(encodedPixel({1, 1, 1, 0}, 65), Bytes{255});
    EXPECT_EQ(encodedPixel({1, 0, 0, 1}, 65), Bytes{54});
    std::uint16_t wide[4];
    std::memcpy(wide, encodedPixel({0, 1, 0.5f, 0.25f}, 64).data(), sizeof wide);
    EXPECT_EQ((std::vector<int>(wide, wide + 4)), (std::vector<int>{0, 65535, 32768, 16384}));
    std::memcpy(wide, encodedPixel({0.75f}, 66).data(), 2);
    EXPECT_EQ(wide[0], 49151);
}

TEST(Texture, levelsAreBoxFilteredDownToOnePixel) {
    Image image(4, 2, 1);
    const float values[] = {0, 0.2f, 0.4f, 0.6f, 0.4f, 0.2f, 0.8f, 1.0f};
    std::copy(std::begin(values), std::end(values), image.row(0));
    const std::vector<unsigned char> full = {0, 51, 102, 153, 102, 51, 204, 255, 51, 179, 115};
    for (const auto& [wanted, bytes] :
         {std::pair<std::uint32_t, std::size_t>{0, 8}, {1, 8}, {2, 10}, {3, 11}, {15, 11}})
        EXPECT_EQ(encoded(image, 65, wanted),
                  std::vector<unsigned char>(full.begin(), full.begin() + static_cast<int>(bytes)))
            << wanted;
}

TEST(Texture, decodingAndEncodingGiveTheSameBytes) {
    for (const int code : {0, 32, 64, 65, 66}) {
        const PixelFormat format = *findPixelFormat(code);
        std::vector<unsigned char> bytes(256 * 256 * static_cast<std::size_t>(format.bytesPerPixel()));
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<unsigned char>(format.bytesPerChannel == 1 || i % 2 == 0
                                                      ? i / static_cast<std::size_t>(format.bytesPerChannel)
                                                      : i / 512);
        SubstanceTextureInput texture{};
        texture.pixels = bytes.data();
        texture.level0Width = texture.level0Height = 256;
        texture.pixelFormat = static_cast<unsigned char>(code);
        const auto image = decodeTexture(&texture);
        ASSERT_TRUE(image && *image) << code;
        EXPECT_EQ(encoded(**image, code), bytes) << code;
    }
}

} // namespace
