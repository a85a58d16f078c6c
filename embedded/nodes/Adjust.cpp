#include "embedded/nodes/Adjust.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/AdjustRows.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Contrast, Pivot, Invert, Clamp, Low, High };

// Contrast and inversion together are linear; written so that a contrast of 1 changes no bit.
Adjustment adjustmentOf(const NodeRun& run) {
    const float contrast = run.number(Contrast);
    const float offset = run.number(Pivot) * (1.0f - contrast);
    const bool inverts = run.integer(Invert) != 0;
    return {inverts ? -contrast : contrast, inverts ? 1.0f - offset : offset, run.integer(Clamp) != 0,
            run.number(Low), run.number(High)};
}

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel([adjustment = adjustmentOf(run), channels = run.channels, row = adjustRow.chosen()](
                             const Segment& segment, const SourceRow* sources, float* const* result) {
        for (int c = 0; c < channels; ++c) {
            const float* const in = sources[0].channels[c];
            if (c < 3)
                row(adjustment, in, segment.count, result[c]);
            else
                std::copy_n(in, segment.count, result[c]);
        }
    });
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind adjustKind() {
    return {
        28,
        "adjust",
        "Changes the contrast, then inverts, then clamps, each as wanted. Works on each colour component; "
        "alpha stays.",
        {{"source", PortChannels::Any, true, 0}},
        {number("contrast", ValueType::Float, 1, 0, 64, "factor of the distance from the pivot"),
         number("pivot", ValueType::Float, 0.5, -16, 16, "the value that the contrast leaves as it is"),
         choice("invert", {"no", "yes"}, 0, "yes: a value v becomes 1 - v"),
         choice("clamp", {"no", "yes"}, 0, "yes: the result stays between low and high"),
         number("low", ValueType::Float, 0, -16, 16, "smallest result when clamped"),
         number("high", ValueType::Float, 1, -16, 16,
                "largest result when clamped; below low it is the only one")},
        ResultChannels::Widest,
        nullptr,
        nullptr,
        6,
        &kernel};
}

} // namespace embedded
