// Everything wraps: what is periodic stays so, and generators tile by construction.
#include "embedded/engine/PlainEvaluator.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace embedded;

namespace {

Image imageOf(const ProgramBuilder& builder, std::int32_t node) {
    return evaluatePlainly(builder.program, static_cast<std::size_t>(node), defaultValues(builder.program));
}

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

bool sameBytes(const Image& a, const Image& b) {
    return a.sampleCount() == b.sampleCount() &&
           std::memcmp(a.row(0), b.row(0), a.sampleCount() * sizeof(float)) == 0;
}

// Filters commute exactly with a shift by half a period, so they treat edges like any other place.
TEST(NodeWrap, filtersTreatEdgesLikeAnyOtherPlace) {
    struct Case {
        const char* kind;
        ProgramBuilder::Parameters parameters;
    };
    const Case cases[] = {
        {"blur", {{"sigma", {0.04}}}},
        {"blur", {{"sigma", {0.2}}}},
        {"warp", {{"intensity", {0.01}}}},
        {"normal", {{"strength", {9}}}},
        {"levels", {{"gamma", {2}}}},
        {"blend", {{"mode", {2}}}},
        {"gradientMap", {}},
        {"channelSplit", {}},
        {"channelMerge", {}},
    };
    for (const Case& test : cases) {
        ProgramBuilder builder(7, 6);
        const auto sourceTwice = [&](bool shifted) {
            const auto noise = builder.node("fbm");
            const auto moved = builder.node("transform", {noise}, {{"offset", {shifted ? 0.5 : 0.0}}});
            const std::vector<std::int32_t> sources(findNodeKind(test.kind)->ports.size(), moved);
            return imageOf(builder, builder.node(test.kind, sources, test.parameters));
        };
        EXPECT_TRUE(sameBytes(sourceTwice(true), halfShifted(sourceTwice(false)))) << test.kind;
    }
}

TEST(NodeWrap, transformsStayPeriodic) {
    ProgramBuilder builder(6, 6);
    const auto noise = builder.node("fbm");
    // Even repeats have half the image as their period; so have eighth turns of even repeats.
    for (const double turns : {0.0, 0.125, -0.25}) {
        const Image image =
            imageOf(builder, builder.node("transform", {noise}, {{"repeats", {2}}, {"rotation", {turns}}}));
        EXPECT_TRUE(sameBytes(image, halfShifted(image))) << turns;
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
    struct Case {
        const char* kind;
        ProgramBuilder::Parameters parameters;
    };
    const Case cases[] = {
        {"fbm", {{"repeats", {3, 5}}, {"octaves", {2}}}},
        {"fbm", {{"style", {1}}, {"repeats", {1, 2}}}},
        {"fbm", {{"style", {2}}, {"repeats", {7, 4}}, {"seed", {-9}}}},
        {"cellular", {{"result", {0}}, {"repeats", {3, 4}}}},
        {"cellular", {{"result", {1}}, {"repeats", {1, 2}}}},
        {"cellular", {{"result", {2}}, {"repeats", {5, 3}}}},
        {"cellular", {{"result", {3}}, {"repeats", {9, 9}}}},
        {"bricks", {{"result", {1}}, {"columns", {3}}, {"rows", {4}}, {"bevel", {0.4}}, {"offset", {0.3}}}},
    };
    for (const Case& test : cases) {
        ProgramBuilder builder(8, 7);
        const Image image = imageOf(builder, builder.node(test.kind, {}, test.parameters));
        for (const bool columns : {true, false}) {
            const int size = columns ? image.width() : image.height();
            double largest = 0;
            for (int place = 0; place + 1 < size; ++place)
                largest = std::max(largest, meanStep(image, place, columns));
            EXPECT_LE(meanStep(image, size - 1, columns), 1.1 * largest) << test.kind << ' ' << columns;
            EXPECT_GT(largest, 0) << test.kind;
        }
    }
}

TEST(NodeWrap, seedsVaryWhatIsRandom) {
    for (const char* kind : {"fbm", "cellular"}) {
        ProgramBuilder builder(5, 5);
        const auto first = builder.node(kind);
        const auto second = builder.node(kind, {}, {{"seed", {1}}});
        const auto third = builder.node(kind);
        builder.program.nodes.back().seed.constant.integers[0] = 1; // the graph's seed adds to the node's
        EXPECT_FALSE(sameBytes(imageOf(builder, first), imageOf(builder, second))) << kind;
        EXPECT_TRUE(sameBytes(imageOf(builder, second), imageOf(builder, third))) << kind;
    }
}

} // namespace
