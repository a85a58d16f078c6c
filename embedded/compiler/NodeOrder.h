// The order in which nodes can be computed.
#pragma once

#include "embedded/compiler/Source.h"

#include <cstddef>
#include <vector>

namespace embedded {

using NodeIndexes = std::vector<std::size_t>;

// Sources first, and otherwise as written. The nodes are those of the graph, wired. Each cycle is reported
// once and then treated as if it were none.
NodeIndexes orderNodes(const SourceGraph& graph, const std::vector<ProgramNode>& nodes,
                       Diagnostics& diagnostics);

} // namespace embedded
