#include "embedded/nodes/ChannelSplit.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/LuminanceRows.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Channel };
constexpr int luminanceChoice = 4; // after the four channels

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel([channel = run.integer(Channel), weigh = luminanceRow.chosen()](
                             const Segment& segment, const SourceRow* sources, float* const* result) {
        const float* const* const in = sources[0].channels;
        if (channel == luminanceChoice)
            weigh(in[0], in[1], in[2], segment.count, result[0]);
        else
            std::copy_n(in[channel], segment.count, result[0]);
    });
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind channelSplitKind() {
    return {13,
            "channelSplit",
            "One channel as gray.",
            {{"source", PortChannels::Colour, true, 0}},
            {choice("channel", {"red", "green", "blue", "alpha", "luminance"}, 0, "which one")},
            ResultChannels::Gray,
            nullptr,
            nullptr,
            5,
            &kernel};
}

} // namespace embedded
