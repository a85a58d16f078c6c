// Numbers of nodes against their formulas.
#include "embedded/engine/PlainEvaluator.h"
#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/Resample.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <set>

using namespace embedded;

namespace {

Image imageOf(const ProgramBuilder& builder, std::int32_t node, const InputValues& inputs) {
    return evaluatePlainly(builder.program, static_cast<std::size_t>(node), inputs);
}

Image imageOf(const ProgramBuilder& builder, std::int32_t node) {
    return imageOf(builder, node, defaultValues(builder.program));
}

// A node of the kind over one image that a function of x and y gives.
Image filtered(const char* kind, const ProgramBuilder::Parameters& parameters, int log2Side,
               const std::function<float(int, int)>& source) {
    ProgramBuilder builder(log2Side, log2Side);
    const auto input = builder.input(1, ValueType::Image);
    const auto image = builder.node("imageInput", {}, {{"colour", {0}}});
    builder.bind(image, "image", input);
    auto pixels = std::make_shared<Image>(1 << log2Side, 1 << log2Side, 1);
    for (int y = 0; y < pixels->height(); ++y)
        for (int x = 0; x < pixels->width(); ++x) pixels->row(y)[x] = source(x, y);
    InputValues inputs = defaultValues(builder.program);
    inputs.images[0] = pixels;
    return imageOf(builder, builder.node(kind, {image}, parameters), inputs);
}

float uniformThrough(const char* kind, const ProgramBuilder::Parameters& parameters, double value) {
    return filtered(kind, parameters, 0, [=](int, int) { return static_cast<float>(value); }).row(0)[0];
}

TEST(NodeFormula, polynomialsAreCloseToTheFunctions) {
    for (int i = 0; i <= 4000; ++i) {
        const float x = static_cast<float>(i) / 4000.0f;
        const auto wide = [](float value) { return static_cast<double>(value); };
        const float turns = 4 * x - 2, base = 100 * x, exponent = 40 * x - 20;
        EXPECT_NEAR(sineOfTurns(turns), std::sin(6.283185307179586 * wide(turns)), 1e-6) << x;
        EXPECT_NEAR(power(x, 2.4f), std::pow(wide(x), wide(2.4f)), 1e-6) << x;
        EXPECT_NEAR(power(base, 0.3f), std::pow(wide(base), wide(0.3f)), 4e-6) << x;
        EXPECT_NEAR(wide(exp2Of(exponent)) / std::exp2(wide(exponent)), 1, 4e-7) << x;
        EXPECT_NEAR(linearFromSrgb(srgbFromLinear(x)), x, 1e-6) << x;
    }
    EXPECT_EQ(power(0, 0.5f), 0);
    EXPECT_EQ(power(-1, 2), 0);
}

TEST(NodeFormula, levels) {
    struct Case {
        double in, low, high, gamma, outLow, outHigh, expected;
    };
    const Case cases[] = {
        {0.3, 0, 1, 1, 0, 1, 0.3},      {0.3, 0.2, 0.7, 1, 0, 1, 0.2}, {0.1, 0.2, 0.7, 1, 0, 1, 0},
        {0.9, 0.2, 0.7, 1, 0, 1, 1},    {0.25, 0, 1, 2, 0, 1, 0.5},    {0.5, 0, 1, 0.5, 0, 1, 0.25},
        {0.25, 0, 1, 1, 0.5, 1, 0.625}, {0.25, 0, 1, 1, 1, 0, 0.75},   {0.25, 1, 0, 1, 0, 1, 0.75},
        {0.4, 0.5, 0.5, 1, 0, 1, 0},    {0.5, 0.5, 0.5, 1, 0, 1, 1},   {-0.05, -0.1, 0.1, 1, 0, 1, 0.25},
    };
    for (const Case& c : cases) {
        const ProgramBuilder::Parameters parameters = {{"inputLow", {c.low}},
                                                       {"inputHigh", {c.high}},
                                                       {"gamma", {c.gamma}},
                                                       {"outputLow", {c.outLow}},
                                                       {"outputHigh", {c.outHigh}}};
        EXPECT_NEAR(uniformThrough("levels", parameters, c.in), c.expected, 1e-6)
            << c.in << ' ' << c.low << ' ' << c.high << ' ' << c.gamma;
    }
}

std::vector<float> blended(double mode, const std::vector<double>& background,
                           const std::vector<double>& foreground, double mask, double opacity) {
    ProgramBuilder builder(0, 0);
    const double colour = background.size() > 1 ? 1 : 0;
    const auto b = builder.node("uniform", {}, {{"colour", {colour}}, {"value", background}});
    const auto f = builder.node("uniform", {}, {{"colour", {colour}}, {"value", foreground}});
    const auto m = builder.node("uniform", {}, {{"value", {mask}}});
    const Image image =
        imageOf(builder, builder.node("blend", {b, f, m}, {{"mode", {mode}}, {"opacity", {opacity}}}));
    return {image.row(0), image.row(0) + image.channels()};
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
            const auto code = static_cast<double>(mode);
            EXPECT_NEAR(blended(code, {b}, {s}, 1, 1)[0], modes[mode].expected[i], 1e-6)
                << modes[mode].name << i;
            EXPECT_NEAR(blended(code, {b, b, b, 1}, {s, s, s, 1}, 1, 1)[2], modes[mode].expected[i], 1e-6)
                << modes[mode].name << i;
        }
    }
}

TEST(NodeFormula, blendMaskOpacityAndAlpha) {
    EXPECT_NEAR(blended(0, {0}, {1}, 0.5, 0.5)[0], 0.25, 1e-6);
    EXPECT_NEAR(blended(0, {0}, {1}, 7, 1)[0], 1, 1e-6); // masks are clamped
    const struct {
        std::vector<double> background, foreground;
        std::vector<float> expected;
    } cases[] = {
        // Half-covering red multiplied on half-covering green: colours weighed as the recommendation says.
        {{0, 1, 0, 0.5}, {1, 0, 0, 0.5}, {1.0f / 3, 1.0f / 3, 0, 0.75f}},
        {{0.5, 0.5, 0.5, 1}, {0.5, 1, 0, 0}, {0.5f, 0.5f, 0.5f, 1}},
        {{1, 1, 1, 0}, {0.2, 0.4, 0.6, 1}, {0.2f, 0.4f, 0.6f, 1}},
        {{1, 1, 1, 0}, {1, 1, 1, 0}, {0, 0, 0, 0}},
    };
    for (const auto& test : cases) {
        const auto result = blended(1, test.background, test.foreground, 1, 1);
        for (std::size_t c = 0; c < 4; ++c) EXPECT_NEAR(result[c], test.expected[c], 1e-6) << c;
    }
}

TEST(NodeFormula, gradientMap) {
    // Stops out of order: 0.8 white, 0.2 black, 0.5 red.
    ProgramBuilder::Parameters stops = {
        {"stops", {3}},           {"position1", {0.8}},      {"colour1", {1, 1, 1, 1}},
        {"position2", {0.2}},     {"colour2", {0, 0, 0, 1}}, {"position3", {0.5}},
        {"colour3", {1, 0, 0, 1}}};
    const struct {
        double in, interpolation, red;
        double green;
    } cases[] = {{0, 0, 0, 0},           {0.35, 0, 0.5, 0}, {0.5, 0, 1, 0},  {0.65, 0, 1, 0.5}, {2, 0, 1, 1},
                 {0.275, 1, 0.15625, 0}, {0.49, 2, 0, 0},   {0.79, 2, 1, 0}, {0.8, 2, 1, 1}};
    for (const auto& c : cases) {
        stops["interpolation"] = {c.interpolation};
        const Image image =
            filtered("gradientMap", stops, 0, [&](int, int) { return static_cast<float>(c.in); });
        EXPECT_NEAR(image.row(0)[0], c.red, 1e-6) << c.in;
        EXPECT_NEAR(image.row(0)[1], c.green, 1e-6) << c.in;
    }
}

TEST(NodeFormula, normalOfAPlane) {
    constexpr int side = 16;
    const auto plane = [](int x, int y) { return static_cast<float>(x - y) / side; };
    for (const double format : {0.0, 1.0}) {
        const Image image = filtered("normal", {{"strength", {100}}, {"format", {format}}}, 4, plane);
        const float* pixel = image.row(5) + 4 * 7;
        const double length = std::sqrt(3.0); // the normal is (-1, 1, 1) with green towards the bottom
        EXPECT_NEAR(pixel[0], 0.5 - 0.5 / length, 1e-6);
        EXPECT_NEAR(pixel[1], 0.5 + (format == 1 ? 0.5 : -0.5) / length, 1e-6);
        EXPECT_NEAR(pixel[2], 0.5 + 0.5 / length, 1e-6);
        EXPECT_EQ(pixel[3], 1);
    }
}

TEST(NodeFormula, blurSpreadsByItsSigma) {
    constexpr int side = 256;
    for (const double sigmaInPixels : {0.7, 3.0, 5.9, 6.1, 13.0, 25.0}) {
        const Image image = filtered("blur", {{"sigma", {sigmaInPixels / side}}}, 8, [](int x, int y) {
            return x == side / 2 && y == side / 2 ? 1.0f : 0.0f;
        });
        double sum = 0, variance = 0;
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) {
                sum += static_cast<double>(image.row(y)[x]);
                variance += static_cast<double>(image.row(y)[x]) * (x - side / 2) * (x - side / 2);
            }
        }
        EXPECT_NEAR(sum, 1, 1e-4) << sigmaInPixels;
        EXPECT_NEAR(std::sqrt(variance) / sigmaInPixels, 1, 0.02) << sigmaInPixels;
    }
}

TEST(NodeFormula, warpAndTransformMovePixelsWhereTheySay) {
    constexpr int side = 8;
    const auto numbered = [](int x, int y) { return static_cast<float>(x + side * y); };
    const struct {
        ProgramBuilder::Parameters parameters;
        int x, y; // where pixel (1, 2) goes
    } cases[] = {{{}, 1, 2},
                 {{{"offset", {0.25, 0.5}}}, 3, 6},
                 {{{"rotation", {0.25}}}, 5, 1}, // clockwise
                 {{{"rotation", {-0.5}}}, 6, 5},
                 {{{"rotation", {0.25}}, {"offset", {0.125, 0}}}, 6, 1}};
    for (const auto& test : cases)
        EXPECT_EQ(filtered("transform", test.parameters, 3, numbered).row(test.y)[test.x], 17)
            << test.x << test.y;

    ProgramBuilder builder(3, 3);
    const auto bricks = builder.node("bricks", {}, {{"result", {2}}});
    const auto vectors = builder.node("uniform", {}, {{"colour", {1}}, {"value", {1, 0.25, 0, 1}}});
    const auto warped =
        builder.node("warp", {bricks, ProgramNode::unconnected, vectors}, {{"intensity", {0.25}}});
    const Image before = imageOf(builder, bricks);
    const Image after = imageOf(builder, warped);
    for (int y = 0; y < side; ++y) // two pixels right, one up
        for (int x = 0; x < side; ++x) EXPECT_EQ(after.row((y + 7) % side)[(x + 2) % side], before.row(y)[x]);
}

TEST(NodeFormula, channels) {
    ProgramBuilder builder(0, 0);
    const auto gray = [&](double value) { return builder.node("uniform", {}, {{"value", {value}}}); };
    const auto merged = builder.node("channelMerge", {gray(0.25), ProgramNode::unconnected, gray(0.5)});
    const double expected[] = {0.25, 0, 0.5, 1, 0.25 * 0.2126 + 0.5 * 0.0722};
    for (int channel = 0; channel < 5; ++channel) {
        const auto split =
            builder.node("channelSplit", {merged}, {{"channel", {static_cast<double>(channel)}}});
        EXPECT_NEAR(imageOf(builder, split).row(0)[0], expected[channel], 1e-6) << channel;
    }
}

TEST(NodeFormula, cellularFindsTheNearestPoints) {
    constexpr int side = 64, columns = 3, rows = 5;
    struct Point {
        float x, y, id;
    };
    std::vector<Point> points; // with all neighbouring periods
    for (int row = -rows; row < 2 * rows; ++row) {
        for (int column = -columns; column < 2 * columns; ++column) {
            const Hash3 random = hash(static_cast<std::uint32_t>((column + columns) % columns),
                                      static_cast<std::uint32_t>((row + rows) % rows), 4);
            points.push_back({static_cast<float>(column) + unitFloat(random.x),
                              static_cast<float>(row) + unitFloat(random.y), unitFloat(random.z)});
        }
    }
    for (int metric = 0; metric < 3; ++metric) {
        ProgramBuilder builder(6, 6);
        const auto result = [&](double kind) {
            return imageOf(builder, builder.node("cellular", {},
                                                 {{"result", {kind}},
                                                  {"metric", {static_cast<double>(metric)}},
                                                  {"repeats", {columns, rows}},
                                                  {"seed", {4}}}));
        };
        const Image f1 = result(0), lead = result(1), edge = result(2), id = result(3);
        for (int i = 0; i < side * side; i += 7) {
            const float x = (static_cast<float>(i % side) + 0.5f) * columns / side;
            const float y = (static_cast<float>(i / side) + 0.5f) * rows / side;
            const auto distance = [&](const Point& p) {
                const float dx = std::abs(p.x - x), dy = std::abs(p.y - y);
                return metric == 0 ? std::hypot(dx, dy) : metric == 1 ? dx + dy : std::max(dx, dy);
            };
            std::sort(points.begin(), points.end(),
                      [&](const Point& a, const Point& b) { return distance(a) < distance(b); });
            ASSERT_NEAR(f1.row(0)[i], distance(points[0]), 1e-5) << metric << ' ' << i;
            ASSERT_NEAR(lead.row(0)[i], distance(points[1]) - distance(points[0]), 1e-5)
                << metric << ' ' << i;
            ASSERT_EQ(id.row(0)[i], points[0].id) << metric << ' ' << i;
            if (metric != 0) continue;
            float nearestEdge = 1e9f;
            for (std::size_t p = 1; p < points.size(); ++p) {
                const float ax = points[p].x - points[0].x, ay = points[p].y - points[0].y;
                const float mx = 0.5f * (points[p].x + points[0].x) - x,
                            my = 0.5f * (points[p].y + points[0].y) - y;
                nearestEdge = std::min(nearestEdge, (mx * ax + my * ay) / std::hypot(ax, ay));
            }
            ASSERT_NEAR(edge.row(0)[i], nearestEdge, 1e-5) << i;
        }
    }
}

TEST(NodeFormula, bricksCoverTheirAreaAndHaveOneNumberEach) {
    ProgramBuilder builder(8, 8);
    const ProgramBuilder::Parameters wall = {
        {"columns", {4}}, {"rows", {8}}, {"mortar", {0.25}}, {"rounding", {0}}, {"offset", {0.5}}};
    const auto with = [&](double result) {
        auto parameters = wall;
        parameters["result"] = {result};
        return imageOf(builder, builder.node("bricks", {}, parameters));
    };
    const Image mask = with(0), id = with(2);
    double area = 0;
    for (std::size_t i = 0; i < mask.sampleCount(); ++i) area += static_cast<double>(mask.row(0)[i]);
    EXPECT_NEAR(area / static_cast<double>(mask.sampleCount()), 0.75 * 1.75 / 2, 0.005);
    const std::set<float> ids(id.row(0), id.row(0) + id.sampleCount());
    EXPECT_EQ(ids.size(), 32u);
    EXPECT_NE(mask.row(16)[64], 1); // a joint between bricks of the first row, a brick's middle in the second
    EXPECT_EQ(mask.row(48)[64], 1);
}

TEST(NodeFormula, resampling) {
    Image image(4, 2, 1);
    for (int i = 0; i < 8; ++i) image.row(0)[i] = static_cast<float>(i);
    const struct {
        int width, height;
        std::vector<float> expected;
    } cases[] = {
        {2, 1, {2.5f, 4.5f}},
        {1, 2, {1.5f, 5.5f}},
        {8, 1, {2.75f, 2.25f, 2.75f, 3.25f, 3.75f, 4.25f, 4.75f, 4.25f}}, // wraps between 5 and 2
        {3, 2, {0.25f, 1.5f, 2.75f, 4.25f, 5.5f, 6.75f}},
    };
    for (const auto& test : cases) {
        const Image result = resampled(image, test.width, test.height);
        for (std::size_t i = 0; i < test.expected.size(); ++i)
            EXPECT_NEAR(result.row(0)[i], test.expected[i], 1e-6)
                << test.width << 'x' << test.height << ' ' << i;
    }
}

} // namespace
