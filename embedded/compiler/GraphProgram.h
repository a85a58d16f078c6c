// A graph's nodes, wired by name, as part of a program.
#pragma once

#include "embedded/compiler/Source.h"
#include "embedded/program/Program.h"

#include <cstddef>
#include <string>
#include <vector>

namespace embedded {

std::uint32_t inputUid(const SourceGraph& graph, const SourceInput& input);
std::uint32_t outputUid(const SourceGraph& graph, const SourceOutput& output);

// For each input of a graph the indexes of the outputs that it alters, ascending.
using AlteredOutputs = std::vector<std::vector<std::size_t>>;

// Appends the graph's inputs, nodes and outputs, and the names of these nodes. Nodes on which no output
// depends are left out. After errors the program is not usable.
AlteredOutputs appendGraph(const SourceGraph& graph, Program& program, std::vector<std::string>& nodeNames,
                           Diagnostics& diagnostics);

} // namespace embedded
