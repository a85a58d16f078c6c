#include "OwnPicture.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <tuple>
#include <utility>

namespace own {

namespace {

using Row = std::vector<Pixel>;

// The sRGB curve, IEC 61966-2-1.
float decodeSrgb(float value) {
    return value <= 0.04045f ? value / 12.92f : std::pow((value + 0.055f) / 1.055f, 2.4f);
}

float encodeSrgb(float value) {
    return value <= 0.0031308f ? value * 12.92f : 1.055f * std::pow(value, 1 / 2.4f) - 0.055f;
}

unsigned char byteOf(float value, bool isSrgb) {
    const float clamped = value > 0 ? std::min(value, 1.0f) : 0.0f; // also what is no number
    return static_cast<unsigned char>((isSrgb ? encodeSrgb(clamped) : clamped) * 255 + 0.5f);
}

float component(const Words& words, int type, int index) {
    const std::uint32_t bits = words[static_cast<std::size_t>(index)];
    float number = 0;
    if (isInteger(type))
        number = static_cast<float>(static_cast<std::int32_t>(bits));
    else
        std::memcpy(&number, &bits, sizeof number);
    return number;
}

// One channel of a number at (u, v), each in 0 to 1: as a brightness that grows along a gradient. 0 to 1
// stay, what is beyond is reflected.
float numberAt(const Words& words, int type, int channel, float u, float v) {
    const int count = componentCount(type);
    const float slope = count == 4 ? component(words, type, 3) : 0.25f;
    const float number = component(words, type, channel % count) + slope * (channel == 1 ? v : u);
    const float folded = std::fmod(std::fabs(number), 2.0f);
    return folded > 1 ? 2 - folded : folded;
}

Pixel inputAt(const Input& input, const Words& words, const Image* image, float u, float v) {
    if (input.type != SubstanceInputImage)
        return {numberAt(words, input.type, 0, u, v), numberAt(words, input.type, 1, u, v),
                numberAt(words, input.type, 2, u, v)};
    if (!image) return {0.5f, 0.5f, 0.5f};
    const auto x = static_cast<std::size_t>(u * static_cast<float>(image->width));
    const auto y = static_cast<std::size_t>(v * static_cast<float>(image->height));
    return image->pixels[y * image->width + x];
}

// One row of an output: the mean of its sources, of which earlier outputs have their rows already.
Row rowOf(const Program& program, const Values& values, const Output& output, const std::vector<Row>& rows,
          std::size_t width, float v) {
    std::vector<int> sources;
    for (const int source : output.sources)
        if (source < 0 || !program.inputs[static_cast<std::size_t>(source)].isResolution)
            sources.push_back(source);
    const auto share = 1 / static_cast<float>(sources.size());
    Row row(width, Pixel{});
    for (std::size_t x = 0; x < width; ++x) {
        const float u = (static_cast<float>(x) + 0.5f) / static_cast<float>(width);
        if (sources.empty()) row[x] = {u, v, 0.5f};
        for (const int source : sources) {
            const auto i = static_cast<std::size_t>(source < 0 ? -1 - source : source);
            const Pixel pixel =
                source < 0 ? rows[i][x]
                           : inputAt(program.inputs[i], values.numbers[i], values.images[i].get(), u, v);
            for (std::size_t channel = 0; channel < 3; ++channel) row[x][channel] += share * pixel[channel];
        }
    }
    return row;
}

// Side lengths are powers of two, by the input "$resolution" where there is one.
std::pair<std::size_t, std::size_t> sizeOf(const Program& program, const Values& values) {
    const auto side = [](std::uint32_t logarithm) {
        return std::size_t(1) << std::clamp(static_cast<std::int32_t>(logarithm), 0, 14);
    };
    for (std::size_t i = 0; i < program.inputs.size(); ++i)
        if (program.inputs[i].isResolution) return {side(values.numbers[i][0]), side(values.numbers[i][1])};
    return {64, 64};
}

// Half the size in each direction, box-filtered. Sides are powers of two.
std::vector<unsigned char> halve(const unsigned char* level, std::size_t width, std::size_t height) {
    const std::size_t right = width > 1 ? 4 : 0, below = height > 1 ? 4 * width : 0;
    std::vector<unsigned char> half;
    half.reserve(width * height);
    for (std::size_t y = 0; y < height; y += 2)
        for (std::size_t x = 0; x < width; x += 2)
            for (std::size_t channel = 0; channel < 4; ++channel) {
                const unsigned char* const first = level + 4 * (y * width + x) + channel;
                const int sum = first[0] + first[right] + first[below] + first[right + below];
                half.push_back(static_cast<unsigned char>((sum + 2) / 4));
            }
    return half;
}

// The output itself, and what it reads.
std::vector<bool> neededFor(const Program& program, std::size_t output) {
    std::vector<bool> isNeeded(output + 1, false);
    isNeeded[output] = true;
    for (std::size_t i = output + 1; i-- > 0;)
        for (const int source : program.outputs[i].sources)
            if (isNeeded[i] && source < 0) isNeeded[static_cast<std::size_t>(-1 - source)] = true;
    return isNeeded;
}

} // namespace

Values defaultValues(const Program& program) {
    Values values;
    for (const Input& input : program.inputs) values.numbers.push_back(input.value);
    values.images.resize(program.inputs.size());
    return values;
}

std::shared_ptr<const Image> readImage(const SubstanceTextureInput& texture) {
    auto image = std::make_shared<Image>();
    image->width = texture.level0Width;
    image->height = texture.level0Height;
    image->pixels.resize(image->width * image->height);
    if (!isFormat(texture.pixelFormat) || texture.channelsOrder != 0 || image->pixels.empty()) return nullptr;
    const auto* bytes = static_cast<const unsigned char*>(texture.pixels);
    for (Pixel& pixel : image->pixels) {
        for (float& value : pixel) {
            value = static_cast<float>(*bytes++) / 255;
            if (texture.pixelFormat == SubstanceFormatSrgb) value = decodeSrgb(value);
        }
        ++bytes; // alpha
    }
    return image;
}

Picture paint(const Program& program, const Values& values, unsigned int output) {
    Picture picture;
    std::tie(picture.width, picture.height) = sizeOf(program, values);
    picture.bytes.reserve(4 * picture.width * picture.height);
    const bool isSrgb = program.outputs[output].format == SubstanceFormatSrgb;
    const std::vector<bool> isNeeded = neededFor(program, output);
    std::vector<Row> rows(isNeeded.size());
    for (std::size_t y = 0; y < picture.height; ++y) {
        const float v = (static_cast<float>(y) + 0.5f) / static_cast<float>(picture.height);
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (isNeeded[i]) rows[i] = rowOf(program, values, program.outputs[i], rows, picture.width, v);
        for (const Pixel& pixel : rows[output]) {
            for (const float value : pixel) picture.bytes.push_back(byteOf(value, isSrgb));
            picture.bytes.push_back(255);
        }
    }
    std::size_t width = picture.width, height = picture.height, level = 0;
    while (picture.levels < program.outputs[output].mipmaps && width * height > 1) {
        const std::vector<unsigned char> half = halve(picture.bytes.data() + level, width, height);
        level = picture.bytes.size();
        picture.bytes.insert(picture.bytes.end(), half.begin(), half.end());
        width = std::max<std::size_t>(width / 2, 1);
        height = std::max<std::size_t>(height / 2, 1);
        ++picture.levels;
    }
    return picture;
}

} // namespace own
