// What a package's program adds to what its description tells.
#pragma once

#include "tools/GraphSummary.h"
#include "tools/PackageFile.h"

namespace tool {

// Whether the outputs tile, and what the graphs cost. Nothing for a program that cannot be read.
void addProgramFacts(const PackageFile& package, std::vector<GraphSummary>& graphs);

} // namespace tool
