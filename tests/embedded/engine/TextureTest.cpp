// Textures as bytes: encodings, levels, and the way back.
#include "embedded/engine/TextureDecoding.h"
#include "tests/embedded/engine/ProgramBuilder.h"
#include "tests/embedded/engine/Rendering.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace embedded;

namespace {

// The texture that the engine makes of an image.
Bytes encoded(Image image, int format, std::uint32_t wantedLevels = 1) {
    ProgramBuilder builder(0, 0);
    builder.program.outputs = {{1, builder.picture(std::move(image)), format, wantedLevels}};
    RenderedTextures rendered;
    evaluate(builder.program, {0}, builder.inputValues(), plainWorkshop(), rendered);
    return rendered.textures.at(0).bytes;
}

TEST(Texture, encodesEachFormat) {
    const struct {
        std::vector<float> pixel;
        int format;
        Bytes bytes;
    } cases[] = {
        {{0, 0.5f, 1, 0.5f}, 32, {0, 188, 255, 128}},
        {{0.0031308f, 0.2158605f, 0.002f, 1}, 32, {10, 128, 7, 255}},
        {{-3, 7, 0.2f, 1}, 0, {0, 255, 51, 255}},
        {{1, 0, 0, 1}, 65, {54}},
        {{0.2f, 0.4f, 0.6f, 1}, 64, {51, 51, 102, 102, 153, 153, 255, 255}},
    };
    for (const auto& [pixel, format, bytes] : cases) {
        const auto channel = [values = pixel](int, int, int c) { return values[std::size_t(c)]; };
        EXPECT_EQ(encoded(painted(1, 1, 4, channel), format), bytes) << format;
    }
}

TEST(Texture, levelsAreBoxFilteredDownToOnePixel) {
    const double values[] = {0, 0.2, 0.4, 0.6, 0.4, 0.2, 0.8, 1};
    const auto value = [&](int x, int y, int) { return values[4 * y + x]; };
    const Bytes full = {0, 51, 102, 153, 102, 51, 204, 255, 51, 179, 115};
    for (const auto& [wanted, size] : {std::pair(0u, 8), std::pair(2u, 10), std::pair(15u, 11)})
        EXPECT_EQ(encoded(painted(4, 2, 1, value), 65, wanted), Bytes(full.begin(), full.begin() + size))
            << wanted;
}

TEST(Texture, decodingAndEncodingGiveTheSameBytes) {
    for (const int code : {0, 32, 64, 65, 66}) {
        const PixelFormat format = *findPixelFormat(code);
        const auto channelBytes = static_cast<std::size_t>(format.bytesPerChannel);
        Bytes bytes(256 * 256 * static_cast<std::size_t>(format.bytesPerPixel()));
        // Every value of a channel.
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<unsigned char>(i % channelBytes == 0 ? i / channelBytes : i / 512);
        const SubstanceTextureInput texture{bytes.data(), 256, 256, static_cast<unsigned char>(code), 0, 1};
        const std::shared_ptr<const Image> image = decodeTexture(&texture).value();
        const auto sample = [&](int x, int y, int c) { return image->row(y, c)[x]; };
        EXPECT_EQ(encoded(painted(256, 256, image->channels(), sample), code), bytes) << code;
    }
}

} // namespace
