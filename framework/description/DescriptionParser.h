// Reading the XML description of a package.
#pragma once

#include "framework/description/GraphDesc.h"
#include "support/GuardedXml.h"

#include <vector>

namespace SubstanceAir {

class PackageDesc;

// Appends the document's graphs, in document order; the package is to be their parent. False for a document
// that is malformed or is no package description; what was read of it until then stays in the two results.
bool parsePackageDescription(const support::GuardedText& xmlText, PackageDesc& package,
                             unsigned int& assemblyUid, std::vector<GraphDesc>& graphs);

} // namespace SubstanceAir
