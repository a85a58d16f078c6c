// What became of two packages that were stacked: which outputs feed which inputs, and why there is no
// texture.
#pragma once

#include "material/Substance.h"
#include "tools/PackageFile.h"

#include <iosfwd>
#include <string>

namespace tool {

// A table of the connections, the inputs that nothing feeds, and the inputs that became one.
void explainStacking(std::ostream& out, const PackageFile& bottom, const PackageFile& top,
                     const kvSubstance::Substance& material);

bool hasConnections(const kvSubstance::Substance& material);

// Whether rendering failed: an output is still to be rendered.
bool isOutOfDate(kvSubstance::Substance& material);

// A whole message for a material that gave no texture.
std::string whyNoTexture(const PackageFile& bottom, const PackageFile& top,
                         const kvSubstance::Substance& material);

// Whether the bottom has an output of that identifier, label or usage, in any letter case.
bool offersChannel(const SubstanceAir::GraphDesc& bottom, const std::string& channel);

} // namespace tool
