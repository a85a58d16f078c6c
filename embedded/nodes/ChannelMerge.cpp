#include "embedded/nodes/ChannelMerge.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

#include <algorithm>

namespace embedded {
namespace {

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel(
        [channels = run.channels](const Segment& segment, const SourceRow* sources, float* const* result) {
            for (int c = 0; c < channels; ++c) {
                const float* const in = sources[c].channels[0];
                if (in)
                    std::copy_n(in, segment.count, result[c]);
                else
                    std::fill_n(result[c], segment.count, c == 3 ? 1.0f : 0.0f);
            }
        });
}

// Gray sources do not tell whether there is one for alpha.
bool hasAlpha(const std::vector<Value>&, const std::vector<int>& sourceChannels) {
    return sourceChannels[3] > 0;
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind channelMergeKind() {
    return {14,
            "channelMerge",
            "A colour image from gray ones; what is not connected is 0, alpha 1.",
            {{"red", PortChannels::Gray, false, 0},
             {"green", PortChannels::Gray, false, 0},
             {"blue", PortChannels::Gray, false, 0},
             {"alpha", PortChannels::Gray, false, 0}},
            {},
            ResultChannels::Colour,
            hasAlpha,
            nullptr,
            4,
            &kernel};
}

} // namespace embedded
