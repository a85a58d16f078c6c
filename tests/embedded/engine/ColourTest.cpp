// Numbers of the nodes that work on colours and normals, against their formulas.
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

using namespace embedded;

namespace {

using Parameters = ProgramBuilder::Parameters;

// A pixel that points a x sixteenths of a turn from straight up towards the right, as a normal map holds it.
std::vector<double> tilted(double sixteenths) {
    const double angle = sixteenths * std::acos(-1.0) / 8;
    return {0.5 + 0.5 * std::sin(angle), 0.5, 0.5 + 0.5 * std::cos(angle), 1};
}

TEST(Colour, pixels) {
    const struct {
        const char* kind;
        Parameters parameters;
        std::vector<std::vector<double>> sources;
        std::vector<double> expected;
    } cases[] = {
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
        ProgramBuilder builder(0, 0);
        std::vector<std::int32_t> nodes;
        for (const auto& source : sources)
            nodes.push_back(builder.node("uniform", {}, {{"colour", {1}}, {"value", source}}));
        const Image pixel = builder.imageOf(builder.node(kind, nodes, parameters));
        for (int c = 0; c < pixel.channels(); ++c)
            EXPECT_NEAR(pixel.row(0, c)[0], expected[static_cast<std::size_t>(c)], 2e-6)
                << kind << " over " << sources[0][0] << ", channel " << c;
    }
}

// Content goes down (a quarter turn from the right) by what the amount is above the still one.
TEST(Colour, directionalWarpMovesPixels) {
    Image numbered(8, 8, 1);
    for (int i = 0; i < 64; ++i) numbered.row(0)[i] = static_cast<float>(i);
    for (const auto& [amount, still, rowsDown] : {std::tuple{1.0, 0.0, 2}, {0.5, 0.5, 0}, {0.0, 0.5, -1}}) {
        ProgramBuilder builder(3, 3);
        const auto source = builder.picture(numbered, {{"colour", {0}}});
        const auto amounts = builder.node("uniform", {}, {{"value", {amount}}});
        const Image moved =
            builder.imageOf(builder.node("directionalWarp", {source, amounts},
                                         {{"angle", {0.25}}, {"intensity", {0.25}}, {"still", {still}}}));
        for (const int y : {0, 5, 7}) EXPECT_NEAR(moved.row((y + rowsDown) & 7)[3], 8 * y + 3, 1e-4) << y;
    }
}

} // namespace
