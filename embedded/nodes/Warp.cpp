#include "embedded/nodes/Warp.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

NodeKind warpKind() {
    return {
        10,
        "warp",
        "Displaces the source; where both guides are connected, their displacements add.",
        {{"source", PortChannels::Any, true},
         {"height", PortChannels::Gray, false},
         {"vectors", PortChannels::Colour, false}},
        {number(
            "intensity", ValueType::Float, 0.01, -1, 1,
            "displacement, in shorter sides of the image, for a height that changes by 1 over that side, and "
            "for vectors at their ends (red right, green down; 0.5 is none)")},
        ResultChannels::Widest,
        true,
        40,
        nullptr};
}

} // namespace embedded
