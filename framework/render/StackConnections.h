// Which outputs of a bottom graph feed which image inputs of a top graph.
#pragma once

#include "framework/description/GraphDesc.h"

#include <utility>
#include <vector>

namespace SubstanceAir {

// (output uid of the bottom graph, input uid of the top graph)
using StackConnections = std::vector<std::pair<unsigned int, unsigned int>>;

// The pairs of which both ends exist, in their order.
StackConnections existingConnections(const GraphDesc& bottom, const GraphDesc& top,
                                     const StackConnections& wanted);

// Connects by name, in any letter case: the identifiers, labels and channel usages of the outputs with the
// identifiers and labels of the image inputs. Usages that can stand in for each other count as one. At most
// one connection for an input.
StackConnections matchingConnections(const GraphDesc& bottom, const GraphDesc& top);

} // namespace SubstanceAir
