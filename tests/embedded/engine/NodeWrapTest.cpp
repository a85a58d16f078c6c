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
    const int width = image.width(), height = image.height();
    return painted(width, height, image.channels(), [&](int x, int y, int c) {
        return image.row((y + height / 2) % height, c)[(x + width / 2) % width];
    });
}

// A random node of the kind over random images in gray and in colour, or over the same ones moved; nothing
// when it may break the period. The same seed makes the same node.
std::optional<Image> filtered(const NodeKind& kind, int log2Width, int log2Height, bool moved,
                              unsigned seed) {
    std::mt19937 random(seed);
    ProgramBuilder builder(log2Width, log2Height);
    std::vector<std::int32_t> sources;
    for (const int channels : {4, 1, 3}) {
        Image image = painted(1 << log2Width, 1 << log2Height, channels,
                              [&](int, int, int) { return random() % 1024 / 1023.0; });
        sources.push_back(builder.picture(moved ? halfShifted(image) : std::move(image)));
    }
    const std::int32_t node = builder.randomNode(kind, sources, random);
    if (kind.breaksPeriod && kind.breaksPeriod(knownParameters(builder.program.nodes.back())))
        return std::nullopt;
    return builder.imageOf(node);
}

// A filter treats edges like any other place: where all sources move by half the image, so does the result.
// So what has half the image as its period keeps it.
TEST(NodeWrap, filtersMoveWithTheirSources) {
    const std::set<std::string> placed = {"scatter", "transform"}; // depend on places
    for (const auto& [log2Width, log2Height] : {std::pair{6, 5}, {7, 7}, {1, 3}, {0, 2}}) {
        for (const NodeKind& kind : nodeKinds()) {
            if (kind.ports.empty() || placed.count(kind.name) > 0) continue;
            for (unsigned seed = 0; seed < 12; ++seed) {
                const auto image = filtered(kind, log2Width, log2Height, false, seed);
                if (!image) continue;
                EXPECT_TRUE(
                    sameNumbers(*filtered(kind, log2Width, log2Height, true, seed), halfShifted(*image)))
                    << kind.name << ' ' << seed << ' ' << log2Width << ' ' << log2Height;
            }
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
        const Image image = builder.imageOf(kind, sources, parameters);
        for (const bool columns : {true, false}) {
            const int last = (columns ? image.width() : image.height()) - 1;
            double largest = 0;
            for (int place = 0; place < last; ++place)
                largest = std::max(largest, meanStep(image, place, columns));
            EXPECT_LE(meanStep(image, last, columns), 1.1 * largest) << kind << ' ' << columns;
        }
    }
}

} // namespace
