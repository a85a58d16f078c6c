// Numbers of bricks and scattered copies.
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <map>
#include <numeric>
#include <tuple>

using namespace embedded;

namespace {

double sumOf(const Image& gray) {
    return std::accumulate(gray.row(0), gray.row(0) + gray.sampleCount(), 0.0);
}

TEST(Pattern, bricksAreOfOneSize) {
    // A wall; basket and herringbone, which are rounded up to as many columns and rows.
    for (const auto& [pattern, columns, rows] :
         {std::tuple{0.0, 4.0, 8.0}, {2.0, 3.0, 5.0}, {3.0, 3.0, 5.0}}) {
        ProgramBuilder builder(8, 8);
        Parameters paving = {{"pattern", {pattern}}, {"columns", {columns}}, {"rows", {rows}}};
        paving["mortar"] = {0.25};
        paving["rounding"] = {0};
        EXPECT_NEAR(sumOf(builder.imageOf("bricks", {}, paving)) / 65536, 0.75 * 1.75 / 2, 0.005);
        paving["result"] = {2};
        const Image identity = builder.imageOf("bricks", {}, paving);
        std::map<float, int> areas;
        int upright = 0; // pixels whose brick goes on above or below them
        for (int i = 0; i < 65536; ++i) {
            const auto idAt = [&](int y) { return identity.row(y % 256)[i % 256]; };
            ++areas[idAt(i / 256)];
            upright += idAt(i / 256) == idAt(i / 256 + 32) || idAt(i / 256) == idAt(i / 256 + 224);
        }
        EXPECT_EQ(upright, pattern == 0 ? 0 : 32768) << pattern;
        EXPECT_EQ(areas.size(), 32u) << pattern;
        for (const auto& [id, area] : areas) EXPECT_EQ(area, 2048) << pattern << ' ' << id;
    }
}

// Squares of a known size that are added up: what leaves the image at one edge has to come in at the other.
TEST(Pattern, scatteredCopiesKeepTheirArea) {
    const struct {
        double repeats, copies, size, mask, area; // the area in the image's
    } cases[] = {{1, 4, 2, 1, 16}, {3, 2, 1.5, 1, 4.5}, {16, 1, 0.3, 1, 0.09}, {64, 1, 1, 0.25, 0.25}};
    for (const auto& [repeats, copies, size, maskValue, area] : cases) {
        ProgramBuilder builder(8, 8);
        const auto white = builder.node("uniform", {}, {{"value", {1}}});
        const auto mask = builder.node("uniform", {}, {{"value", {maskValue}}});
        Parameters adding = {{"copies", {copies}}, {"jitter", {1}}, {"overlap", {1}}};
        adding["repeats"] = {repeats};
        adding["size"] = {size};
        const Image image = builder.imageOf("scatter", {white, mask}, adding);
        EXPECT_NEAR(sumOf(image) / 65536 / area, 1, 0.03) << area;
    }
}

TEST(Pattern, scatteredColoursLieOnNothing) {
    ProgramBuilder builder(6, 6);
    const std::vector<double> colour = {2, 0.5, 0.25, 0.5};
    const auto uniform = builder.node("uniform", {}, {{"colour", {1}}, {"value", colour}});
    for (const double overlap : {0.0, 1.0, 2.0, 3.0}) {
        const Image image = builder.imageOf(
            "scatter", {uniform}, {{"size", {0.5}}, {"jitter", {0}}, {"turn", {0}}, {"overlap", {overlap}}});
        for (int c = 0; c < 4; ++c) {
            EXPECT_NEAR(image.row(8, c)[8], colour.at(std::size_t(c)), 1e-6) << overlap;
            EXPECT_EQ(image.row(16, c)[16], 0) << overlap; // between four copies
        }
    }
}

} // namespace
