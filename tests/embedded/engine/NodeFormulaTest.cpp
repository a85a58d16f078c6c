// Numbers of nodes against their formulas.
#include "embedded/nodes/Resample.h"
#include "embedded/rows/Arithmetic.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <set>

using namespace embedded;

namespace {

using Parameters = ProgramBuilder::Parameters;

// A square image of gray as colour that a function of x and y gives.
Image painted(int side, const std::function<float(int, int)>& gray) {
    Image image(side, side, 3);
    for (int i = 0; i < 3 * side * side; ++i)
        image.row(i / side / 3, i / side % 3)[i % side] = gray(i % side, i / side / 3);
    return image;
}

// One pixel of a node over uniform sources; no numbers leave a source unconnected.
std::vector<float> pixelOf(const char* kind, const Parameters& parameters,
                           const std::vector<std::vector<double>>& sources) {
    ProgramBuilder builder(0, 0);
    std::vector<std::int32_t> nodes;
    for (const auto& numbers : sources) {
        const double colour = numbers.size() > 1 ? 1 : 0;
        nodes.push_back(numbers.empty()
                            ? ProgramNode::unconnected
                            : builder.node("uniform", {}, {{"colour", {colour}}, {"value", numbers}}));
    }
    const Image image = builder.imageOf(builder.node(kind, nodes, parameters));
    std::vector<float> pixel(image.row(0), image.row(0) + image.channels()); // channels of a row
    if (pixel.size() == 3) pixel.push_back(1);
    return pixel;
}

TEST(NodeFormula, pixels) {
    const struct {
        const char* kind;
        Parameters parameters;
        std::vector<std::vector<double>> sources;
        std::vector<float> expected;
    } cases[] = {
        {"levels", {{"inputLow", {0.2}}, {"inputHigh", {0.7}}}, {{0.3}}, {0.2f}},
        {"levels", {{"inputLow", {0.2}}, {"inputHigh", {0.7}}}, {{0.9}}, {1}},
        {"levels", {{"gamma", {2}}}, {{0.25}}, {0.5f}},
        {"levels", {{"outputLow", {1}}, {"outputHigh", {0.5}}}, {{0.25}}, {0.875f}},
        {"levels", {{"inputLow", {1}}, {"inputHigh", {0}}}, {{0.25}}, {0.75f}},
        {"levels", {{"inputLow", {0.5}}, {"inputHigh", {0.5}}}, {{0.5}}, {1}}, // a threshold
        {"blend", {{"opacity", {0.5}}}, {{0}, {1}, {0.5}}, {0.25f}},
        {"blend", {}, {{0}, {1}, {7}}, {1}},                                         // masks are clamped
        {"blend", {{"mode", {1}}}, {{0.6}, {0.2}}, {0.12f}},                         // multiply
        {"blend", {{"mode", {2}}}, {{0.6}, {0.2}}, {0.68f}},                         // screen
        {"blend", {{"mode", {3}}}, {{0.6}, {0.2}}, {0.36f}},                         // overlay
        {"blend", {{"mode", {4}}}, {{0.2}, {0.9}}, {0.2f}},                          // darken
        {"blend", {{"mode", {5}}}, {{0.2}, {0.9}}, {0.9f}},                          // lighten
        {"blend", {{"mode", {6}}}, {{0.6}, {0.2}}, {0.75f}},                         // colourDodge
        {"blend", {{"mode", {7}}}, {{0.2}, {0.9}}, {1 - 0.8f / 0.9f}},               // colourBurn
        {"blend", {{"mode", {8}}}, {{0.2}, {0.9}}, {0.84f}},                         // hardLight
        {"blend", {{"mode", {9}}}, {{0.2}, {0.9}}, {0.2f + 0.8f * (0.448f - 0.2f)}}, // softLight
        {"blend", {{"mode", {10}}}, {{0.2}, {0.9}}, {0.7f}},                         // difference
        {"blend", {{"mode", {11}}}, {{0.2}, {0.9}}, {0.74f}},                        // exclusion
        {"blend", {{"mode", {12}}}, {{0.2}, {0.9}}, {1.1f}},                         // add
        {"blend", {{"mode", {13}}}, {{0.2}, {0.9}}, {-0.7f}},                        // subtract
        {"blend", {{"mode", {14}}}, {{0.2, 0.4, 0.6, 1}, {1, 0, 0, 1}}, {0.642f, 0.242f, 0.242f, 1}}, // hue
        {"blend", {{"mode", {15}}}, {{0.2, 0.4, 0.6, 1}, {1, 1, 1, 1}}, {0.362f, 0.362f, 0.362f, 1}},
        {"blend", {{"mode", {16}}}, {{0.5, 0.5, 0.5, 1}, {1, 0, 0, 1}}, {1, 0.285714f, 0.285714f, 1}},
        {"blend", {{"mode", {17}}}, {{1, 0, 0, 1}, {0.3, 0.3, 0.3, 1}}, {1, 0, 0, 1}},
        {"blend", {{"mode", {17}}}, {{0.3}, {0.6}}, {0.6f}},
        // Half-covering red multiplied on half-covering green: colours weighed as the recommendation says.
        {"blend", {{"mode", {1}}}, {{0, 1, 0, 0.5}, {1, 0, 0, 0.5}}, {1.0f / 3, 1.0f / 3, 0, 0.75f}},
        {"blend", {{"mode", {1}}}, {{1, 1, 1, 0}, {0.2, 0.4, 0.6, 1}}, {0.2f, 0.4f, 0.6f, 1}},
        {"blend", {{"mode", {1}}}, {{1, 1, 1, 0}, {1, 1, 1, 0}}, {0, 0, 0, 0}},
        {"gradientMap", {{"position1", {1}}, {"position2", {0}}}, {{0.75}}, {0.25f, 0.25f, 0.25f, 1}},
        {"gradientMap", {{"interpolation", {1}}}, {{0.25}}, {0.15625f, 0.15625f, 0.15625f, 1}},
        {"channelMerge", {}, {{0.25}, {}, {0.5}}, {0.25f, 0, 0.5f, 1}},
        {"channelSplit", {{"channel", {2}}}, {{0.1, 0.2, 0.3, 0.4}}, {0.3f}},
        {"channelSplit", {{"channel", {4}}}, {{1, 0, 0.5, 1}}, {0.2126f + 0.0361f}},
    };
    for (const auto& [kind, parameters, sources, expected] : cases) {
        const std::vector<float> pixel = pixelOf(kind, parameters, sources);
        ASSERT_EQ(pixel.size(), expected.size()) << kind;
        for (std::size_t i = 0; i < pixel.size(); ++i)
            EXPECT_NEAR(pixel[i], expected[i], 1e-6)
                << kind << " over " << sources[0][0] << ", channel " << i;
    }
}

TEST(NodeFormula, normalOfAPlane) {
    ProgramBuilder builder(4, 4);
    const auto plane = builder.picture(painted(16, [](int x, int y) { return (x - y) / 16.0f; }));
    for (const double format : {0.0, 1.0}) {
        const Image image =
            builder.imageOf(builder.node("normal", {plane}, {{"strength", {100}}, {"format", {format}}}));
        const auto pixel = [&](int channel) { return image.row(5, channel)[7]; };
        const double share = 0.5 / std::sqrt(3.0); // the normal is (-1, 1, 1) with green towards the bottom
        EXPECT_NEAR(pixel(0), 0.5 - share, 1e-6);
        EXPECT_NEAR(pixel(1), 0.5 + (format == 1 ? share : -share), 1e-6);
        EXPECT_NEAR(pixel(2), 0.5 + share, 1e-6);
    }
}

TEST(NodeFormula, blurSpreadsByItsSigma) {
    constexpr int side = 256, middle = side / 2;
    ProgramBuilder builder(8, 8);
    const auto dot =
        builder.picture(painted(side, [](int x, int y) { return x == middle && y == middle ? 1.0f : 0.0f; }));
    for (const double sigmaInPixels : {0.7, 5.9, 6.1, 25.0}) {
        const Image image = builder.imageOf(builder.node("blur", {dot}, {{"sigma", {sigmaInPixels / side}}}));
        double sum = 0, variance = 0;
        for (int i = 0; i < side * side; ++i) {
            const auto red = static_cast<double>(image.row(i / side)[i % side]);
            sum += red;
            variance += red * std::pow(i % side - middle, 2);
        }
        EXPECT_NEAR(sum, 1, 1e-4) << sigmaInPixels;
        EXPECT_NEAR(std::sqrt(variance) / sigmaInPixels, 1, 0.02) << sigmaInPixels;
    }
}

TEST(NodeFormula, warpAndTransformMovePixelsWhereTheySay) {
    ProgramBuilder builder(3, 3);
    const auto numbered =
        builder.picture(painted(8, [](int x, int y) { return static_cast<float>(x + 8 * y); }));
    const auto vectors = builder.node("uniform", {}, {{"colour", {1}}, {"value", {1, 0.25, 0, 1}}});
    const struct {
        const char* kind;
        Parameters parameters;
        int x, y; // where pixel (1, 2) goes
    } cases[] = {{"transform", {}, 1, 2},
                 {"transform", {{"offset", {0.25, 0.5}}}, 3, 6},
                 {"transform", {{"rotation", {0.25}}, {"offset", {0.125, 0}}}, 6, 1}, // clockwise, then moved
                 {"warp", {{"intensity", {0.25}}}, 3, 1}};
    for (const auto& [kind, parameters, x, y] : cases) {
        const auto moved = builder.node(kind, {numbered, ProgramNode::unconnected, vectors}, parameters);
        EXPECT_EQ(builder.imageOf(moved).row(y)[x], 17) << kind << x << y;
    }
}

TEST(NodeFormula, cellularFindsTheNearestPoint) {
    constexpr int side = 64, columns = 3, rows = 5;
    for (const double metric : {0.0, 1.0, 2.0}) {
        ProgramBuilder builder(6, 6);
        const Parameters parameters = {{"metric", {metric}}, {"repeats", {columns, rows}}, {"seed", {4}}};
        const Image image = builder.imageOf(builder.node("cellular", {}, parameters));
        for (int i = 0; i < side * side; i += 7) {
            float nearest = 1e9f;
            for (int cell = 0; cell < 9 * columns * rows; ++cell) { // with all neighbouring periods
                const int column = cell % (3 * columns), row = cell / (3 * columns);
                const Hash3 random = hash(static_cast<std::uint32_t>(column % columns),
                                          static_cast<std::uint32_t>(row % rows), 4);
                const float x = std::abs(static_cast<float>(column - columns) + unitFloat(random.x) -
                                         (static_cast<float>(i % side) + 0.5f) * columns / side);
                const float y = std::abs(static_cast<float>(row - rows) + unitFloat(random.y) -
                                         (static_cast<float>(i / side) + 0.5f) * rows / side);
                nearest = std::min(nearest, metric == 0   ? std::hypot(x, y)
                                            : metric == 1 ? x + y
                                                          : std::max(x, y));
            }
            ASSERT_NEAR(image.row(0)[i], nearest, 1e-5) << metric << ' ' << i;
        }
    }
}

TEST(NodeFormula, bricksCoverTheirAreaAndHaveOneNumberEach) {
    ProgramBuilder builder(8, 8);
    Parameters wall = {{"columns", {4}}, {"rows", {8}}, {"mortar", {0.25}}, {"rounding", {0}}};
    const Image mask = builder.imageOf(builder.node("bricks", {}, wall));
    wall["result"] = {2};
    const Image identity = builder.imageOf(builder.node("bricks", {}, wall));
    EXPECT_NEAR(std::accumulate(mask.row(0), mask.row(256), 0.0) / 65536, 0.75 * 1.75 / 2, 0.005);
    EXPECT_EQ(std::set<float>(identity.row(0), identity.row(256)).size(), 32u);
}

TEST(NodeFormula, resampling) {
    Image image(4, 2, 1);
    std::iota(image.row(0), image.row(2), 0.0f);
    const struct {
        int width, height;
        std::vector<float> expected;
    } cases[] = {
        {2, 1, {2.5f, 4.5f}},
        {8, 1, {2.75f, 2.25f, 2.75f, 3.25f, 3.75f, 4.25f, 4.75f, 4.25f}}, // wraps between 5 and 2
        {3, 2, {0.25f, 1.5f, 2.75f, 4.25f, 5.5f, 6.75f}},
    };
    for (const auto& [width, height, expected] : cases) {
        const Image result = resampled(image, width, height);
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_NEAR(result.row(0)[i], expected[i], 1e-6) << width << 'x' << height << ' ' << i;
    }
}

} // namespace
