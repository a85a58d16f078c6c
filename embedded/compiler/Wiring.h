// The words of a graph's nodes as indexes within the graph.
#pragma once

#include "embedded/compiler/Source.h"
#include "embedded/program/Program.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace embedded {

// Nodes and inputs are numbered as they stand in the source graph. After errors nodes may lack parts.
struct Wiring {
    std::vector<ProgramNode> nodes;
    std::vector<std::optional<std::size_t>> outputNodes; // one for each output; absent after an error
};

// Finds what attributes name, and checks that it fits. Cycles are not looked for.
Wiring wireGraph(const SourceGraph& graph, Diagnostics& diagnostics);

} // namespace embedded
