#include "embedded/nodes/ChannelSplit.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

NodeKind channelSplitKind() {
    return {13,
            "channelSplit",
            "One channel as gray.",
            {{"source", PortChannels::Colour, true}},
            {choice("channel", {"red", "green", "blue", "alpha", "luminance"}, 0, "which one")},
            ResultChannels::Gray,
            true,
            3,
            nullptr};
}

} // namespace embedded
