// Numbers of nodes against their formulas.
#include "embedded/nodes/Resample.h"
#include "embedded/rows/Arithmetic.h"
#include "tests/ReadFile.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

using namespace embedded;

namespace {

// Separated by commas; "-" is none.
std::vector<double> numbersOf(const std::string& text) {
    std::vector<double> numbers;
    std::istringstream stream(text);
    for (std::string number; std::getline(stream, number, ',');)
        if (number != "-") numbers.push_back(std::stod(number));
    return numbers;
}

TEST(NodeFormula, pixels) {
    std::istringstream table(readFile(KVSUBSTANCE_PIXELS));
    for (std::string line; std::getline(table, line);) {
        SCOPED_TRACE(line);
        std::istringstream words(line.substr(0, line.find('#')));
        std::string kind, word;
        if (!(words >> kind)) continue;
        ProgramBuilder builder(0, 0);
        Parameters parameters;
        std::vector<std::int32_t> sources;
        while (words >> word && word != "->") {
            const std::vector<double> numbers = numbersOf(word.substr(word.find('=') + 1));
            const double colour = numbers.size() > 1 ? 1 : 0;
            if (word.find('=') != std::string::npos)
                parameters[word.substr(0, word.find('='))] = numbers;
            else
                sources.push_back(numbers.empty() ? ProgramNode::unconnected
                                                  : builder.node("uniform", {},
                                                                 {{"colour", {colour}}, {"value", numbers}}));
        }
        words >> word;
        const std::vector<double> expected = numbersOf(word);
        const Image image = builder.imageOf(kind, sources, parameters);
        ASSERT_EQ(image.channels() == 1, expected.size() == 1);
        for (int c = 0; c < static_cast<int>(expected.size()); ++c)
            EXPECT_NEAR(c < image.channels() ? image.row(0, c)[0] : 1, expected.at(std::size_t(c)), 2e-6)
                << c;
    }
}

TEST(NodeFormula, normalOfAPlane) {
    ProgramBuilder builder(4, 4);
    const auto plane = builder.picture(painted(16, 16, 1, [](int x, int y, int) { return (x - y) / 16.0; }));
    for (const double format : {0.0, 1.0}) {
        const Image image = builder.imageOf("normal", {plane}, {{"strength", {100}}, {"format", {format}}});
        const double share = 0.5 / std::sqrt(3.0); // the normal is (-1, 1, 1) with green towards the bottom
        EXPECT_NEAR(image.row(5, 0)[7], 0.5 - share, 1e-6);
        EXPECT_NEAR(image.row(5, 1)[7], 0.5 + (format == 1 ? share : -share), 1e-6);
        EXPECT_NEAR(image.row(5, 2)[7], 0.5 + share, 1e-6);
    }
}

TEST(NodeFormula, blurSpreadsByItsSigma) {
    constexpr int side = 256, middle = side / 2;
    ProgramBuilder builder(8, 8);
    const auto dot = builder.picture(
        painted(side, side, 3, [](int x, int y, int) { return x == middle && y == middle ? 1 : 0; }));
    for (const double sigmaInPixels : {0.7, 5.9, 6.1, 25.0}) {
        const Image image = builder.imageOf("blur", {dot}, {{"sigma", {sigmaInPixels / side}}});
        double sum = 0, variance = 0;
        for (int i = 0; i < side * side; ++i) {
            const double red = image.row(i / side)[i % side];
            sum += red;
            variance += red * std::pow(i % side - middle, 2);
        }
        EXPECT_NEAR(sum, 1, 1e-4) << sigmaInPixels;
        EXPECT_NEAR(std::sqrt(variance) / sigmaInPixels, 1, 0.02) << sigmaInPixels;
    }
}

TEST(NodeFormula, warpAndTransformMovePixelsWhereTheySay) {
    ProgramBuilder builder(3, 3);
    const auto numbered = builder.picture(painted(8, 8, 3, [](int x, int y, int) { return x + 8 * y; }));
    const auto vectors = builder.node("uniform", {}, {{"colour", {1}}, {"value", {1, 0.25, 0, 1}}});
    const auto half = builder.node("uniform", {}, {{"value", {0.5}}});
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
                 {"warp", {numbered, ProgramNode::unconnected, vectors}, {{"intensity", {0.25}}}, 3, 1},
                 {"directionalWarp", {numbered, half}, down, 1, 4},
                 {"directionalWarp", {numbered, half}, up, 1, 1}};
    for (const auto& [kind, sources, parameters, x, y] : cases)
        EXPECT_NEAR(builder.imageOf(kind, sources, parameters).row(y)[x], 17, 1e-4) << kind << x << y;
}

TEST(NodeFormula, cellularFindsTheNearestPoint) {
    constexpr int side = 64, columns = 3, rows = 5;
    for (const double metric : {0.0, 1.0, 2.0}) {
        const Image image = ProgramBuilder(6, 6).imageOf(
            "cellular", {}, {{"metric", {metric}}, {"repeats", {columns, rows}}, {"seed", {4}}});
        for (int i = 0; i < side * side; i += 7) {
            double nearest = 1e9;
            for (int cell = 0; cell < 9 * columns * rows; ++cell) { // with all neighbouring periods
                const int column = cell % (3 * columns), row = cell / (3 * columns);
                const Hash3 random = hash(static_cast<std::uint32_t>(column % columns),
                                          static_cast<std::uint32_t>(row % rows), 4);
                const double x =
                    std::abs(column - columns + unitFloat(random.x) - (i % side + 0.5) * columns / side);
                const double y = std::abs(row - rows + unitFloat(random.y) - (i / side + 0.5) * rows / side);
                const double distances[] = {std::hypot(x, y), x + y, std::max(x, y)};
                nearest = std::min(nearest, distances[static_cast<int>(metric)]);
            }
            ASSERT_NEAR(image.row(0)[i], nearest, 1e-5) << metric << ' ' << i;
        }
    }
}

TEST(NodeFormula, resampling) {
    const Image image = painted(4, 2, 1, [](int x, int y, int) { return x + 4 * y; });
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
