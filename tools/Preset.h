// Applies the presets that packages carry, as a host would.
#pragma once

#include "framework/description/GraphDesc.h"
#include "material/Substance.h"

#include <string>
#include <vector>

namespace tool {

// The graphs that a material was made of. The top is null when there is one alone.
struct MaterialGraphs {
    const SubstanceAir::GraphDesc* bottom;
    const SubstanceAir::GraphDesc* top;
};

// The name is a preset's label, with "bottom:" or "top:" before it when both packages have it. Sets what fits
// and returns, a line each, what was left out and why. Throws Failure when there is no such preset.
std::vector<std::string> applyPreset(const std::string& name, const MaterialGraphs& graphs,
                                     const kv::Reference<kvSubstance::Substance>& material);

} // namespace tool
