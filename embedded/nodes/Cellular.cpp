#include "embedded/nodes/Cellular.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

NodeKind cellularKind() {
    return {
        4,
        "cellular",
        "One random point in each lattice cell; distances are in cells.",
        {},
        {choice("result", {"f1", "f2MinusF1", "edgeDistance", "cellId"}, 0,
                "distance to the nearest point, the second less the first, distance to the border between "
                "them, or the nearest point's random number"),
         choice("metric", {"euclidean", "manhattan", "chebyshev"}, 0, "how distances are measured"),
         number("repeats", ValueType::Integer2, 8, 1, 256, "cells across and down"),
         number("jitter", ValueType::Float, 1, 0, 1,
                "0: points in the middle of their cells; 1: anywhere in them"),
         seedParameter()},
        ResultChannels::Gray,
        true,
        120,
        nullptr};
}

} // namespace embedded
