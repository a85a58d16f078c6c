// The inputs that the two graphs of a stack have together.
#pragma once

#include "framework/render/StackDependencies.h"

#include <memory>
#include <utility>
#include <vector>

namespace SubstanceAir {

struct StackInputs {
    std::vector<std::unique_ptr<InputDescBase>> inputs;            // copies, by uid, ascending
    std::vector<std::pair<unsigned int, unsigned int>> fusedPairs; // (bottom input, top input)
    FusedUids fusedUids;
};

// All inputs of the bottom graph, and those of the top graph that no connection feeds. A system input of the
// top graph that the bottom graph has too, by identifier, is fused with it instead: the two become one, which
// alters the outputs of both. Their types are not compared; the linker refuses to fuse inputs of different
// types.
StackInputs joinInputs(const GraphDesc& bottom, const GraphDesc& top, const StackDependencies& dependencies);

} // namespace SubstanceAir
