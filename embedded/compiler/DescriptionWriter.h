// The description text of a package: what hosts learn about its graphs.
#pragma once

#include "embedded/compiler/GraphProgram.h"

#include <string>

namespace embedded {

// One record of altered outputs for each graph.
std::string writeDescription(std::uint32_t packageUid, const std::vector<SourceGraph>& graphs,
                             const std::vector<AlteredOutputs>& altered);

} // namespace embedded
