// Applies the presets that packages carry, as a host would.
#pragma once

#include "tools/PackageFile.h"

#include "material/Substance.h"

#include <string>
#include <vector>

namespace tool {

// The name is a preset's label, with "bottom:" or "top:" before it when both packages have it. Sets what fits
// and returns, a line each, what was left out and why. Throws Failure when there is no such preset.
std::vector<std::string> applyPreset(const std::string& name, const PackageFile& bottom,
                                     const PackageFile& top,
                                     const kv::Reference<kvSubstance::Substance>& material);

} // namespace tool
