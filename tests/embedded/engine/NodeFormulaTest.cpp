// Numbers of nodes against their formulas.
#include "embedded/nodes/Resample.h"
#include "embedded/rows/Arithmetic.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

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

// A pixel that points a x sixteenths of a turn from straight up towards the right, as a normal map holds it.
std::vector<double> tilted(double sixteenths) {
    const double angle = sixteenths * std::acos(-1.0) / 8;
    return {0.5 + 0.5 * std::sin(angle), 0.5, 0.5 + 0.5 * std::cos(angle), 1};
}

TEST(NodeFormula, pixels) {
    const struct {
        const char* kind;
        Parameters parameters;
        std::vector<std::vector<double>> sources;
        std::vector<double> expected;
    } cases[] = {
        {"levels", {{"inputLow", {0.2}}, {"inputHigh", {0.7}}}, {{0.3}}, {0.2}},
        {"levels", {{"inputLow", {0.2}}, {"inputHigh", {0.7}}}, {{0.9}}, {1}},
        {"levels", {{"gamma", {2}}}, {{0.25}}, {0.5}},
        {"levels", {{"outputLow", {1}}, {"outputHigh", {0.5}}}, {{0.25}}, {0.875}},
        {"levels", {{"inputLow", {1}}, {"inputHigh", {0}}}, {{0.25}}, {0.75}},
        {"levels", {{"inputLow", {0.5}}, {"inputHigh", {0.5}}}, {{0.5}}, {1}}, // a threshold
        {"blend", {{"opacity", {0.5}}}, {{0}, {1}, {0.5}}, {0.25}},
        {"blend", {}, {{0}, {1}, {7}}, {1}},                                     // masks are clamped
        {"blend", {{"mode", {1}}}, {{0.6}, {0.2}}, {0.12}},                      // multiply
        {"blend", {{"mode", {2}}}, {{0.6}, {0.2}}, {0.68}},                      // screen
        {"blend", {{"mode", {3}}}, {{0.6}, {0.2}}, {0.36}},                      // overlay
        {"blend", {{"mode", {4}}}, {{0.2}, {0.9}}, {0.2}},                       // darken
        {"blend", {{"mode", {5}}}, {{0.2}, {0.9}}, {0.9}},                       // lighten
        {"blend", {{"mode", {6}}}, {{0.6}, {0.2}}, {0.75}},                      // colourDodge
        {"blend", {{"mode", {7}}}, {{0.2}, {0.9}}, {1 - 0.8 / 0.9}},             // colourBurn
        {"blend", {{"mode", {8}}}, {{0.2}, {0.9}}, {0.84}},                      // hardLight
        {"blend", {{"mode", {9}}}, {{0.2}, {0.9}}, {0.2 + 0.8 * (0.448 - 0.2)}}, // softLight
        {"blend", {{"mode", {10}}}, {{0.2}, {0.9}}, {0.7}},                      // difference
        {"blend", {{"mode", {11}}}, {{0.2}, {0.9}}, {0.74}},                     // exclusion
        {"blend", {{"mode", {12}}}, {{0.2}, {0.9}}, {1.1}},                      // add
        {"blend", {{"mode", {13}}}, {{0.2}, {0.9}}, {-0.7}},                     // subtract
        {"blend", {{"mode", {14}}}, {{0.2, 0.4, 0.6, 1}, {1, 0, 0, 1}}, {0.642, 0.242, 0.242, 1}}, // hue
        {"blend", {{"mode", {15}}}, {{0.2, 0.4, 0.6, 1}, {1, 1, 1, 1}}, {0.362, 0.362, 0.362, 1}},
        {"blend", {{"mode", {16}}}, {{0.5, 0.5, 0.5, 1}, {1, 0, 0, 1}}, {1, 0.285714, 0.285714, 1}},
        {"blend", {{"mode", {17}}}, {{1, 0, 0, 1}, {0.3, 0.3, 0.3, 1}}, {1, 0, 0, 1}},
        {"blend", {{"mode", {17}}}, {{0.3}, {0.6}}, {0.6}},
        // Half-covering red multiplied on half-covering green: colours weighed as the recommendation says.
        {"blend", {{"mode", {1}}}, {{0, 1, 0, 0.5}, {1, 0, 0, 0.5}}, {1.0 / 3, 1.0 / 3, 0, 0.75}},
        {"blend", {{"mode", {1}}}, {{1, 1, 1, 0}, {0.2, 0.4, 0.6, 1}}, {0.2, 0.4, 0.6, 1}},
        {"blend", {{"mode", {1}}}, {{1, 1, 1, 0}, {1, 1, 1, 0}}, {0, 0, 0, 0}},
        {"gradientMap", {{"position1", {1}}, {"position2", {0}}}, {{0.75}}, {0.25, 0.25, 0.25, 1}},
        {"gradientMap", {{"interpolation", {1}}}, {{0.25}}, {0.15625, 0.15625, 0.15625, 1}},
        {"channelMerge", {}, {{0.25}, {}, {0.5}}, {0.25, 0, 0.5, 1}},
        {"channelSplit", {{"channel", {2}}}, {{0.1, 0.2, 0.3, 0.4}}, {0.3}},
        {"channelSplit", {{"channel", {4}}}, {{1, 0, 0.5, 1}}, {0.2126 + 0.0361}},
        {"adjust", {}, {{-3, 0.1, 7, 0.3}}, {-3, 0.1, 7, 0.3}},
        {"adjust", {{"contrast", {2}}, {"pivot", {0.25}}}, {{0.25, 0.5, 0, 0.5}}, {0.25, 0.75, -0.25, 0.5}},
        {"adjust", {{"contrast", {3}}, {"invert", {1}}}, {{0.5, 0.6, 0.3, 0.5}}, {0.5, 0.2, 1.1, 0.5}},
        {"adjust",
         {{"invert", {1}}, {"clamp", {1}}, {"high", {0.7}}},
         {{0.2, 0.6, 3, 0.9}},
         {0.7, 0.4, 0, 0.9}},
        {"grayFromColour", {}, {{1, 0.5, 0, 0.5}}, {0.5702}},
        {"grayFromColour", {{"method", {1}}}, {{0.9, 0.5, 0.1, 0.5}}, {0.5}},
        {"grayFromColour", {{"method", {2}}}, {{0.1, 0.5, 0.9, 0.5}}, {0.9}},
        {"grayFromColour", {{"method", {3}}}, {{0.5, 0.1, 0.9, 0}}, {0.1}},
        {"grayFromColour", {{"method", {4}}}, {{0.5, 0.2, 0.9, 0}}, {0.55}},
        {"grayFromColour", {{"method", {5}}, {"weights", {1, -2, 0.5}}}, {{0.5, 0.1, 0.4, 1}}, {0.5}},
        {"normalCombine", {}, {tilted(2), tilted(1)}, tilted(3)},            // turns in one plane add
        {"normalCombine", {}, {{0.5, 0.5, 0.5, 1}, tilted(-3)}, tilted(-3)}, // no length: straight up
        {"normalCombine", {{"strength", {0}}}, {tilted(-1), tilted(3)}, tilted(-1)},
        {"normalCombine", {{"strength", {-1}}}, {tilted(3), tilted(1)}, tilted(2)},
        {"normalCombine", {}, {tilted(8), tilted(0)}, tilted(8)}, // straight down
    };
    for (const auto& [kind, parameters, sources, expected] : cases) {
        const std::vector<float> pixel = pixelOf(kind, parameters, sources);
        ASSERT_EQ(pixel.size(), expected.size()) << kind;
        for (std::size_t i = 0; i < pixel.size(); ++i)
            EXPECT_NEAR(pixel[i], expected[i], 2e-6)
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
    const auto half = builder.node("uniform", {}, {{"value", {0.5}}});
    const auto none = ProgramNode::unconnected;
    const Parameters down = {{"angle", {0.25}}, {"intensity", {0.5}}, {"still", {0}}};
    const Parameters up = {{"angle", {0.25}}, {"intensity", {0.5}}, {"still", {0.75}}};
    const struct {
        const char* kind;
        std::vector<std::int32_t> sources;
        Parameters parameters;
        int x, y; // where pixel (1, 2) goes
    } cases[] = {{"transform", {numbered}, {}, 1, 2},
                 {"transform", {numbered}, {{"offset", {0.25, 0.5}}}, 3, 6},
                 // Clockwise, then moved.
                 {"transform", {numbered}, {{"rotation", {0.25}}, {"offset", {0.125, 0}}}, 6, 1},
                 {"warp", {numbered, none, vectors}, {{"intensity", {0.25}}}, 3, 1},
                 {"directionalWarp", {numbered, half}, down, 1, 4},
                 {"directionalWarp", {numbered, half}, up, 1, 1}};
    for (const auto& [kind, sources, parameters, x, y] : cases) {
        const Image moved = builder.imageOf(builder.node(kind, sources, parameters));
        EXPECT_NEAR(moved.row(y)[x], 17, 1e-4) << kind << x << y;
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
