#include "embedded/nodes/ChannelMerge.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

#include <array>

namespace embedded {
namespace {

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel(run, [&run](int y, float* out) {
        for (std::size_t c = 0; c < 4; ++c) {
            const float* in = run.sources[c] ? run.sources[c]->row(y) : nullptr;
            const float absent = c == 3 ? 1.0f : 0.0f;
            for (int x = 0; x < run.width; ++x)
                out[4 * static_cast<std::size_t>(x) + c] = in ? in[x] : absent;
        }
    });
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind channelMergeKind() {
    return {14,
            "channelMerge",
            "A colour image from gray ones; what is not connected is 0, alpha 1.",
            {{"red", PortChannels::Gray, false},
             {"green", PortChannels::Gray, false},
             {"blue", PortChannels::Gray, false},
             {"alpha", PortChannels::Gray, false}},
            {},
            ResultChannels::Colour,
            true,
            3,
            &kernel};
}

} // namespace embedded
