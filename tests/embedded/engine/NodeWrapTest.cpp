// Everything wraps: what is periodic stays so, and generators tile by construction.
#include "embedded/program/ProgramFacts.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

using namespace embedded;

namespace {

// Moved by half the image in both directions, wrapping around.
Image halfShifted(const Image& image) {
    Image shifted(image.width(), image.height(), image.channels());
    for (int y = 0; y < image.height(); ++y) {
        for (int c = 0; c < image.channels(); ++c) {
            const float* const in = image.row((y + image.height() / 2) % image.height(), c);
            std::rotate_copy(in, in + image.width() / 2, in + image.width(), shifted.row(y, c));
        }
    }
    return shifted;
}

Image randomImage(int width, int height, int channels, std::mt19937& random) {
    Image image(width, height, channels);
    std::generate_n(image.row(0), image.sampleCount(),
                    [&] { return static_cast<float>(random() % 1024) / 1023.0f; });
    return image;
}

// A random node of the kind over these images, each in gray and in colour; nothing when it may break the
// period. The same random numbers make the same node.
std::optional<Image> filtered(const NodeKind& kind, const std::vector<Image>& images, std::uint32_t seed) {
    std::mt19937 random(seed);
    ProgramBuilder builder(static_cast<int>(std::log2(images[0].width())),
                           static_cast<int>(std::log2(images[0].height())));
    std::vector<std::int32_t> sources;
    for (const Image& image : images)
        sources.push_back(builder.picture(image, {{"colour", {image.channels() > 1 ? 1.0 : 0.0}}}));
    const std::int32_t node = builder.randomNode(kind, sources, random);
    if (kind.breaksPeriod && kind.breaksPeriod(knownParameters(builder.program.nodes.back())))
        return std::nullopt;
    return builder.imageOf(node);
}

// Kinds whose results depend on places, which move when the sources do not.
bool isPlaced(const NodeKind& kind) {
    return kind.ports.empty() || std::set<std::string>{"scatter", "transform"}.count(kind.name) > 0;
}

// A filter treats edges like any other place: where all sources move by half the image, so does the result.
// So what has half the image as its period keeps it.
TEST(NodeWrap, filtersMoveWithTheirSources) {
    std::mt19937 random(2);
    for (const auto& [width, height] : {std::pair{64, 32}, {128, 128}, {2, 8}, {1, 4}}) {
        std::vector<Image> images;
        for (const int channels : {4, 1, 3}) images.push_back(randomImage(width, height, channels, random));
        std::vector<Image> moved;
        for (const Image& image : images) moved.push_back(halfShifted(image));
        for (const NodeKind& kind : nodeKinds()) {
            if (isPlaced(kind)) continue;
            for (std::uint32_t seed = 0; seed < 12; ++seed) {
                const auto image = filtered(kind, images, seed);
                if (!image) continue;
                EXPECT_TRUE(sameNumbers(*filtered(kind, moved, seed), halfShifted(*image)))
                    << kind.name << ' ' << seed << ' ' << width << 'x' << height;
            }
        }
    }
}

using Parameters = ProgramBuilder::Parameters;

// The mean step between the pixels of neighbouring columns or rows.
double meanStep(const Image& image, int place, bool columns) {
    const int length = columns ? image.height() : image.width();
    double sum = 0;
    for (int i = 0; i < length; ++i) {
        const auto at = [&](int p) {
            return columns ? image.row(i)[p % image.width()] : image.row(p % image.height())[i];
        };
        sum += std::abs(at(place + 1) - at(place));
    }
    return sum / length;
}

TEST(NodeWrap, generatorsHaveNoSeam) {
    const std::pair<const char*, Parameters> cases[] = {
        {"fbm", {{"style", {2}}, {"repeats", {7, 4}}, {"seed", {-9}}}},
        {"wave", {{"repeats", {6, 2}}, {"profile", {1}}}},
        {"shape", {{"repeats", {4, 2}}, {"form", {1}}, {"rotation", {0.07}}}},
        {"cellular", {{"result", {1}}, {"repeats", {1, 2}}}},
        {"cellular", {{"result", {3}}, {"repeats", {9, 9}}}},
        {"bricks", {{"result", {1}}, {"columns", {3}}, {"rows", {4}}, {"bevel", {0.4}}, {"offset", {0.3}}}},
        {"weave", {{"result", {1}}, {"threads", {10, 6}}, {"pattern", {2}}}},
        {"scatter", {{"repeats", {5, 3}}}},
    };
    for (const auto& [kind, parameters] : cases) {
        ProgramBuilder builder(8, 7);
        std::vector<std::int32_t> sources;
        if (!findNodeKind(kind)->ports.empty()) sources = {builder.node("shape")};
        const Image image = builder.imageOf(builder.node(kind, sources, parameters));
        for (const bool columns : {true, false}) {
            const int size = columns ? image.width() : image.height();
            double largest = 0;
            for (int place = 0; place + 1 < size; ++place)
                largest = std::max(largest, meanStep(image, place, columns));
            EXPECT_LE(meanStep(image, size - 1, columns), 1.1 * largest) << kind << ' ' << columns;
        }
    }
}

} // namespace
