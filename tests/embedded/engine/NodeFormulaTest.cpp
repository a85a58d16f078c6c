// Numbers of nodes against their formulas.
#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/Resample.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <numeric>
#include <set>

using namespace embedded;

namespace {

using Parameters = ProgramBuilder::Parameters;

// A square image of gray as colour that a function of x and y gives.
Image painted(int side, const std::function<float(int, int)>& gray) {
    Image image(side, side, 4);
    for (int i = 0; i < side * side; ++i) {
        float* const pixel = image.row(0) + 4 * i;
        std::fill_n(pixel, 3, gray(i % side, i / side));
        pixel[3] = 1;
    }
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
    return {image.row(0), image.row(0) + image.channels()};
}

TEST(NodeFormula, pixels) {
    const struct {
        const char* kind;
        Parameters parameters;
        std::vector<std::vector<double>> sources;
        std::vector<float> expected;
    } cases[] = {
        {"levels", {{"inputLow", {0.2}}, {"inputHigh", {0.7}}}, {{0.3}}, {0.2f}},
        {"levels", {{"inputLow", {0.2}}, {"inputHigh", {0.7}}}, {{0.1}}, {0}},
        {"levels", {{"inputLow", {0.2}}, {"inputHigh", {0.7}}}, {{0.9}}, {1}},
        {"levels", {{"gamma", {2}}}, {{0.25}}, {0.5f}},
        {"levels", {{"outputLow", {1}}, {"outputHigh", {0.5}}}, {{0.25}}, {0.875f}},
        {"levels", {{"inputLow", {1}}, {"inputHigh", {0}}}, {{0.25}}, {0.75f}},
        {"levels", {{"inputLow", {0.5}}, {"inputHigh", {0.5}}}, {{0.4}}, {0}}, // a threshold
        {"levels", {{"inputLow", {0.5}}, {"inputHigh", {0.5}}}, {{0.5}}, {1}},
        {"blend", {{"opacity", {0.5}}}, {{0}, {1}, {0.5}}, {0.25f}},
        {"blend", {}, {{0}, {1}, {7}}, {1}}, // masks are clamped
        // Half-covering red multiplied on half-covering green: colours weighed as the recommendation says.
        {"blend", {{"mode", {1}}}, {{0, 1, 0, 0.5}, {1, 0, 0, 0.5}}, {1.0f / 3, 1.0f / 3, 0, 0.75f}},
        {"blend", {{"mode", {1}}}, {{1, 1, 1, 0}, {0.2, 0.4, 0.6, 1}}, {0.2f, 0.4f, 0.6f, 1}},
        {"blend", {{"mode", {1}}}, {{1, 1, 1, 0}, {1, 1, 1, 0}}, {0, 0, 0, 0}},
        {"gradientMap", {{"position1", {1}}, {"position2", {0}}}, {{0.75}}, {0.25f, 0.25f, 0.25f, 1}},
        {"gradientMap", {{"interpolation", {2}}}, {{0.99}}, {0, 0, 0, 1}},
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

TEST(NodeFormula, blendModes) {
    // For each mode the results of (backdrop, source) = (0.6, 0.2), (0.2, 0.9), (0, 1), (1, 0).
    const struct {
        const char* name;
        float expected[4];
    } modes[] = {
        {"normal", {0.2f, 0.9f, 1, 0}},
        {"multiply", {0.12f, 0.18f, 0, 0}},
        {"screen", {0.68f, 0.92f, 1, 1}},
        {"overlay", {0.36f, 0.36f, 0, 1}},
        {"darken", {0.2f, 0.2f, 0, 0}},
        {"lighten", {0.6f, 0.9f, 1, 1}},
        {"colourDodge", {0.75f, 1, 0, 1}},
        {"colourBurn", {0, 1 - 0.8f / 0.9f, 0, 1}},
        {"hardLight", {0.24f, 0.84f, 1, 0}},
        {"softLight", {0.6f - 0.6f * 0.24f, 0.2f + 0.8f * (0.448f - 0.2f), 0, 1}},
        {"difference", {0.4f, 0.7f, 1, 1}},
        {"exclusion", {0.56f, 0.74f, 1, 1}},
        {"add", {0.8f, 1.1f, 1, 1}},
        {"subtract", {0.4f, -0.7f, -1, 1}},
    };
    const double pairs[4][2] = {{0.6, 0.2}, {0.2, 0.9}, {0, 1}, {1, 0}};
    const auto& choices = findNodeKind("blend")->parameters[0].choices;
    ASSERT_EQ(choices.size(), std::size(modes));
    for (std::size_t mode = 0; mode < choices.size(); ++mode) {
        EXPECT_STREQ(choices[mode], modes[mode].name);
        for (int i = 0; i < 4; ++i) {
            const auto [b, s] = pairs[i];
            const Parameters parameters = {{"mode", {static_cast<double>(mode)}}};
            EXPECT_NEAR(pixelOf("blend", parameters, {{b, b, b, 1}, {s, s, s, 1}})[2],
                        modes[mode].expected[i], 1e-6)
                << choices[mode] << i;
        }
    }
}

TEST(NodeFormula, normalOfAPlane) {
    ProgramBuilder builder(4, 4);
    const auto plane = builder.picture(painted(16, [](int x, int y) { return (x - y) / 16.0f; }));
    for (const double format : {0.0, 1.0}) {
        const Image image =
            builder.imageOf(builder.node("normal", {plane}, {{"strength", {100}}, {"format", {format}}}));
        const float* pixel = image.row(5) + 4 * 7;
        const double share = 0.5 / std::sqrt(3.0); // the normal is (-1, 1, 1) with green towards the bottom
        EXPECT_NEAR(pixel[0], 0.5 - share, 1e-6);
        EXPECT_NEAR(pixel[1], 0.5 + (format == 1 ? share : -share), 1e-6);
        EXPECT_NEAR(pixel[2], 0.5 + share, 1e-6);
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
            const auto red = static_cast<double>(image.row(0)[4 * i]);
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
        EXPECT_EQ(builder.imageOf(moved).row(y)[4 * x], 17) << kind << x << y;
    }
}

TEST(NodeFormula, cellularFindsTheNearestPoints) {
    constexpr int side = 64, columns = 3, rows = 5;
    using Vector = std::complex<float>;
    std::vector<std::pair<Vector, float>> points; // with their identities, and all neighbouring periods
    for (int row = -rows; row < 2 * rows; ++row) {
        for (int column = -columns; column < 2 * columns; ++column) {
            const Hash3 random = hash(static_cast<std::uint32_t>((column + columns) % columns),
                                      static_cast<std::uint32_t>((row + rows) % rows), 4);
            const Vector corner(static_cast<float>(column), static_cast<float>(row));
            points.emplace_back(corner + Vector(unitFloat(random.x), unitFloat(random.y)),
                                unitFloat(random.z));
        }
    }
    for (const double metric : {0.0, 1.0, 2.0}) {
        ProgramBuilder builder(6, 6);
        Parameters parameters = {{"metric", {metric}}, {"repeats", {columns, rows}}, {"seed", {4}}};
        const auto result = [&](double kind) {
            parameters["result"] = {kind};
            return builder.imageOf(builder.node("cellular", {}, parameters));
        };
        const Image nearest = result(0), lead = result(1), edge = result(2), identity = result(3);
        for (int i = 0; i < side * side; i += 7) {
            const Vector pixel(static_cast<float>(i % side) + 0.5f, static_cast<float>(i / side) + 0.5f);
            const Vector here(pixel.real() * columns / side, pixel.imag() * rows / side);
            const auto distance = [&](const auto& point) {
                const Vector way = point.first - here;
                const float x = std::abs(way.real()), y = std::abs(way.imag());
                return metric == 0 ? std::abs(way) : metric == 1 ? x + y : std::max(x, y);
            };
            std::sort(points.begin(), points.end(),
                      [&](const auto& a, const auto& b) { return distance(a) < distance(b); });
            const float first = distance(points[0]);
            ASSERT_NEAR(nearest.row(0)[i], first, 1e-5) << metric << ' ' << i;
            ASSERT_NEAR(lead.row(0)[i], distance(points[1]) - first, 1e-5) << metric << ' ' << i;
            ASSERT_EQ(identity.row(0)[i], points[0].second) << metric << ' ' << i;
            float nearestEdge = 1e9f;
            for (std::size_t p = 1; p < points.size(); ++p) {
                const Vector apart = points[p].first - points[0].first;
                const Vector toMiddle = points[0].first + 0.5f * apart - here;
                nearestEdge = std::min(nearestEdge, (toMiddle * std::conj(apart)).real() / std::abs(apart));
            }
            if (metric == 0) {
                ASSERT_NEAR(edge.row(0)[i], nearestEdge, 1e-5) << i;
            }
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
