// Which inputs alter which outputs, across the connections of a stack.
#pragma once

#include "framework/render/StackConnections.h"

#include <map>
#include <set>

namespace SubstanceAir {

// A stack multiplies what its packages say: each input of the bottom alters what each output that it alters
// goes on to alter. Far more than any material needs, and little enough to be listed in a moment.
constexpr size_t maxStackDependencies = 4000000;

// Whether more would have to be listed. Itself in proportion to the two descriptions.
bool hasTooManyDependencies(const GraphDesc& bottom, const GraphDesc& top,
                            const StackConnections& connections);

// What lies beyond the connections.
struct StackDependencies {
    StackDependencies(const GraphDesc& bottom, const GraphDesc& top, const StackConnections& connections);

    // A connection feeds the top input.
    bool isFed(unsigned int topInputUid) const { return alteringThroughInput.count(topInputUid) != 0; }

    // By the uid of a connected bottom output: the top outputs that are altered through it.
    std::map<unsigned int, std::set<unsigned int>> alteredThroughOutput;

    // By the uid of a fed top input: the bottom inputs that act through it.
    std::map<unsigned int, std::set<unsigned int>> alteringThroughInput;
};

// From the uid of a fused top input to that of the bottom input which drives both.
using FusedUids = std::map<unsigned int, unsigned int>;

// Rewrites the lists that tie inputs and outputs together, so that they describe the stack as one graph.
// Afterwards each is ascending, without duplicates.
void joinDependencies(GraphDesc& stack, const StackDependencies& dependencies, const FusedUids& fused);

} // namespace SubstanceAir
