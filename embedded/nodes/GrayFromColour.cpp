#include "embedded/nodes/GrayFromColour.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/GrayFromColourRows.h"

#include <array>

namespace embedded {
namespace {

enum Parameter { Method, Weights };
enum MethodChoice { Luminance, Average, Lightest, Darkest, Lightness, Weighted };

std::unique_ptr<RowKernel> prepareSum(const std::array<float, 3>& weights) {
    return makeRowKernel([weights, row = weighComponents.chosen()](
                             const Segment& segment, const SourceRow* sources, float* const* result) {
        row(sources[0].channels, weights.data(), segment.count, result[0]);
    });
}

std::unique_ptr<RowKernel> prepareExtremes(float largestWeight, float smallestWeight) {
    return makeRowKernel([largestWeight, smallestWeight, row = weighExtremes.chosen()](
                             const Segment& segment, const SourceRow* sources, float* const* result) {
        row(sources[0].channels, largestWeight, smallestWeight, segment.count, result[0]);
    });
}

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    switch (run.integer(Method)) {
    case Luminance:
        return prepareSum({0.2126f, 0.7152f, 0.0722f});
    case Average:
        return prepareSum({1.0f / 3, 1.0f / 3, 1.0f / 3});
    case Lightest:
        return prepareExtremes(1.0f, 0.0f);
    case Darkest:
        return prepareExtremes(0.0f, 1.0f);
    case Lightness:
        return prepareExtremes(0.5f, 0.5f);
    default:
        return prepareSum({run.number(Weights, 0), run.number(Weights, 1), run.number(Weights, 2)});
    }
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind grayFromColourKind() {
    return {29,
            "grayFromColour",
            "Gray by one measure of red, green and blue; alpha does not count.",
            {{"source", PortChannels::Colour, true, 0}},
            {choice("method", {"luminance", "average", "lightest", "darkest", "lightness", "weights"}, 0,
                    "luminance by Rec. 709; lightest and darkest: the largest and the smallest component; "
                    "lightness: the mean of these two; weights: the sum of the components times the weights"),
             {"weights",
              ValueType::Float3,
              {0.2126, 0.7152, 0.0722, 0},
              -16,
              16,
              {},
              "factors of red, green and blue when the method is weights"}},
            ResultChannels::Gray,
            nullptr,
            nullptr,
            8,
            &kernel};
}

} // namespace embedded
