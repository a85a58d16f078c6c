// What nodes make of height images, against formulas and slow reference computations.
#include "embedded/rows/Arithmetic.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

using namespace embedded;

namespace {

using Painting = std::function<double(int, int)>;

constexpr double pi = 3.14159265358979;
constexpr int side = 128;

// A node over square gray images, painted by functions of x and y.
Image filtered(const char* kind, const std::vector<Painting>& sources, const Parameters& parameters) {
    ProgramBuilder builder(7, 7);
    std::vector<std::int32_t> nodes;
    for (const Painting& painting : sources)
        nodes.push_back(
            builder.picture(painted(side, side, 1, [&](int x, int y, int) { return painting(x, y); })));
    return builder.imageOf(kind, nodes, parameters);
}

// Rises towards the middle column from both sides.
double roof(int x, int) {
    return 2 * std::min(x, side - x) / static_cast<double>(side);
}

// A dark dot on a slope leaves a trace on the side to which it is carried, which fades out.
TEST(HeightNodes, flowSmearCarriesTheSource) {
    constexpr int dotX = 32, dotY = 64, length = 8;
    const auto dot = [](int x, int y) { return x == dotX && y == dotY ? 0.0 : 1.0; };
    const struct {
        double direction;
        bool left, right, across;
    } cases[] = {
        {0, true, false, false}, {1, false, true, false}, {2, true, true, false}, {3, false, false, true}};
    for (const auto& [direction, left, right, across] : cases) {
        const Parameters parameters = {
            {"direction", {direction}}, {"result", {1}}, {"length", {length / 128.0}}, {"steps", {length}}};
        const Image image = filtered("flowSmear", {dot, roof}, parameters);
        for (int d = 1; d <= length + 1; ++d) {
            const double trace = d / (length + 1.0);
            EXPECT_NEAR(image.row(dotY)[dotX - d], left ? trace : 1, 0.02) << direction << ' ' << d;
            EXPECT_NEAR(image.row(dotY)[dotX + d], right ? trace : 1, 0.02) << direction << ' ' << d;
            EXPECT_NEAR(image.row(dotY - d)[dotX], across ? trace : 1, 0.02) << direction << ' ' << d;
            EXPECT_NEAR(image.row(dotY + d)[dotX], across ? trace : 1, 0.02) << direction << ' ' << d;
        }
    }
}

TEST(HeightNodes, flowSmearKeepsItsMeasure) {
    const auto stripes = [](int, int y) { return y % 8 < 4 ? 0.25 : 0.75; };
    const auto plain = [](int, int) { return 0.5; };
    for (const double result : {0.0, 1.0, 2.0}) {
        for (const Painting& ground : {Painting(roof), Painting(plain)}) { // along stripes, and nowhere
            const Image image =
                filtered("flowSmear", {stripes, ground}, {{"result", {result}}, {"length", {0.2}}});
            for (int i = 0; i < side * side; ++i)
                ASSERT_NEAR(image.row(0)[i], stripes(0, i / side), 1e-5) << result;
        }
    }
}

// The mean around leaves of a wave what a Gaussian of a disc's width does.
TEST(HeightNodes, curvatureComparesWithTheMean) {
    const auto wave = [](int x, int) { return 0.4 * std::cos(2 * pi * 2 * x / side); };
    for (const double radius : {0.02, 0.04, 0.11, 0.25}) {
        const double kept = std::exp(-0.5 * std::pow(2 * pi * radius, 2)); // sigma is half the radius
        const auto shown = [&](double result) { // with a strength at which a height of 1 is the full range
            return filtered("curvature", {wave},
                            {{"radius", {radius}}, {"strength", {100 * radius}}, {"result", {result}}});
        };
        const Image both = shown(0), edges = shown(1), cavities = shown(2);
        for (int x = 0; x < side; ++x) {
            const double difference = wave(x, 0) * (1 - kept);
            EXPECT_NEAR(both.row(5)[x], 0.5 + 0.5 * difference, 0.006) << radius << ' ' << x;
            EXPECT_NEAR(edges.row(5)[x], std::max(difference, 0.0), 0.012) << radius << ' ' << x;
            EXPECT_NEAR(cavities.row(5)[x], std::max(-difference, 0.0), 0.012) << radius << ' ' << x;
        }
    }
}

TEST(HeightNodes, wearStopsAtTheBreakup) {
    const auto breakup = [](int, int y) { return y < side / 2 ? 0.0 : 0.1; };
    Parameters parameters = {{"radius", {0.05}}, {"strength", {40}}, {"contrast", {2}}, {"result", {1}}};
    const Image edges = filtered("curvature", {roof, breakup}, parameters);
    parameters["result"] = {3};
    const Image wear = filtered("curvature", {roof, breakup}, parameters);
    for (int i = 0; i < side * side; ++i) {
        const float resisting = i / side < side / 2 ? 0.0f : 0.1f;
        ASSERT_EQ(wear.row(0)[i], clamp((edges.row(0)[i] - resisting) * 2, 0, 1)) << i;
    }
    EXPECT_GT(*std::max_element(edges.row(0), edges.row(1)), 0.2);
}

// The light at a pixel by looking at every pixel on the way, in many directions.
double lightAt(const Painting& height, int x, int y, double radius, double scale) {
    constexpr int directions = 32;
    double light = 0;
    for (int d = 0; d < directions; ++d) {
        double tangent = 0;
        for (double distance = 1; distance < radius; distance += 0.5) {
            const double turn = 2 * pi * d / directions;
            const auto right = static_cast<int>(std::lround(distance * std::cos(turn)));
            const auto down = static_cast<int>(std::lround(distance * std::sin(turn)));
            const double away = std::hypot(right, down);
            const double above = height((x + right) & (side - 1), (y + down) & (side - 1)) - height(x, y);
            const double nearness = std::max(0.0, 1 - away * away / (radius * radius));
            tangent = std::max(tangent, above * scale / away * nearness);
        }
        light += 1 / (1 + tangent * tangent) / directions;
    }
    return light;
}

TEST(HeightNodes, ambientOcclusionIsTheOpenSky) {
    const auto trench = [](int x, int) { return x > 40 && x < 50 ? 0.0 : 1.0; };
    const auto domes = [](int x, int y) {
        return std::sqrt(std::max(0.0, 1 - std::pow(x % 32 / 14.0 - 1, 2) - std::pow(y % 64 / 30.0 - 1, 2)));
    };
    for (const Painting& height : {Painting(trench), Painting(domes)}) {
        for (const double radius : {0.06, 0.2}) {
            const Image image =
                filtered("ambientOcclusion", {height}, {{"radius", {radius}}, {"heightScale", {8}}});
            constexpr int stride = 3; // coprime to the side and what the image is shrunk by
            double error = 0, darkestTop = 1;
            for (int i = 0; i < side * side; i += stride) {
                const int x = i % side, y = i / side;
                const double light = image.row(y)[x];
                error += std::abs(light - lightAt(height, x, y, radius * side, 0.08 * side));
                if (height(x, y) >= 0.999) darkestTop = std::min(darkestTop, light);
            }
            EXPECT_LT(error * stride / (side * side), 0.015) << radius;
            EXPECT_GT(darkestTop, 0.99) << radius;
        }
    }
    const auto plain = [](int, int) { return 0.75; };
    EXPECT_EQ(filtered("ambientOcclusion", {plain}, {}).row(7)[7], 1.0f);
}

} // namespace
