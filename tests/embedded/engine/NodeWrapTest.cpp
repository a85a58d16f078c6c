// Everything wraps: what is periodic stays so, and generators tile by construction.
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace embedded;

namespace {

// Moved by half the image in both directions, wrapping around.
Image halfShifted(const Image& image) {
    Image shifted(image.width(), image.height(), image.channels());
    const auto half = image.rowSamples() / 2;
    for (int y = 0; y < image.height(); ++y) {
        const float* in = image.row((y + image.height() / 2) % image.height());
        std::rotate_copy(in, in + half, in + image.rowSamples(), shifted.row(y));
    }
    return shifted;
}

// A filter treats edges like any other place: what has half the image as its period keeps it exactly.
TEST(NodeWrap, filtersKeepWhatIsPeriodic) {
    std::mt19937 random(2);
    for (const NodeKind& kind : nodeKinds()) {
        for (int variant = 0; variant < 12; ++variant) {
            ProgramBuilder builder(6, 5);
            const auto noise = builder.node("fbm");
            const auto tiles = builder.node("transform", {noise}, {{"repeats", {2}}});
            const auto filtered = builder.randomNode(kind, {tiles}, random);
            // Turned samples lie between pixels, where places round differently.
            if (kind.ports.empty() || kind.name == std::string("transform")) continue;
            const Image image = builder.imageOf(filtered);
            EXPECT_TRUE(sameNumbers(image, halfShifted(image))) << kind.name << variant;
        }
    }
}

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
    const std::pair<const char*, ProgramBuilder::Parameters> cases[] = {
        {"fbm", {{"style", {2}}, {"repeats", {7, 4}}, {"seed", {-9}}}},
        {"cellular", {{"result", {1}}, {"repeats", {1, 2}}}},
        {"cellular", {{"result", {3}}, {"repeats", {9, 9}}}},
        {"bricks", {{"result", {1}}, {"columns", {3}}, {"rows", {4}}, {"bevel", {0.4}}, {"offset", {0.3}}}},
    };
    for (const auto& [kind, parameters] : cases) {
        ProgramBuilder builder(8, 7);
        const Image image = builder.imageOf(builder.node(kind, {}, parameters));
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
