#include "embedded/nodes/ChannelMerge.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

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
            nullptr};
}

} // namespace embedded
