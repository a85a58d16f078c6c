#include "embedded/nodes/ChannelSplit.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

namespace embedded {
namespace {

enum Parameter { Channel };
constexpr int luminanceChoice = 4; // after the four channels

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel(run, [source = run.sources[0], channel = run.integer(Channel)](int y, float* out) {
        const float* in = source->row(y);
        for (int x = 0; x < source->width(); ++x)
            out[x] = channel == luminanceChoice ? luminance(in + 4 * x) : in[4 * x + channel];
    });
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind channelSplitKind() {
    return {13,
            "channelSplit",
            "One channel as gray.",
            {{"source", PortChannels::Colour, true}},
            {choice("channel", {"red", "green", "blue", "alpha", "luminance"}, 0, "which one")},
            ResultChannels::Gray,
            true,
            3,
            &kernel};
}

} // namespace embedded
