// What is known of a program before it runs.
#pragma once

#include "embedded/nodes/NodeKind.h"
#include "embedded/program/Program.h"

#include <cstdint>
#include <vector>

namespace embedded {

// What is certain of a node's parameters whatever the values of inputs are: constants, within their ranges.
KnownParameters knownParameters(const ProgramNode& node);

// The nodes on which any of these depends, themselves included: one flag for each node of the program.
std::vector<bool> neededNodes(const Program& program, const std::vector<std::int32_t>& nodes);

} // namespace embedded
