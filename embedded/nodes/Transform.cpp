#include "embedded/nodes/Transform.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

NodeKind transformKind() {
    return {
        11,
        "transform",
        "Repeats, then turns, then shifts the source, which wraps around.",
        {{"source", PortChannels::Any, true}},
        {number("repeats", ValueType::Integer2, 1, 1, 64, "how many times the source fits across and down"),
         number("rotation", ValueType::Float, 0, -1, 1, "turns, clockwise"),
         number("offset", ValueType::Float2, 0, -1, 1, "shift right and down, relative to the image's sides"),
         choice("seamless", {"no", "yes"}, 1,
                "yes: other than quarter turns are fitted to the nearest that tiles; no: exact, with seams")},
        ResultChannels::Widest,
        true,
        25,
        nullptr};
}

} // namespace embedded
