// Where the values of a material's inputs go.
#pragma once

#include "material/Substance.h"

namespace SubstanceAir {
class InputInstanceBase;
}

namespace kvSubstance {

// The first instance, among the material's graphs in their order, that has the input's identifier; null when
// there is none, and for an empty identifier.
SubstanceAir::InputInstanceBase* findInputInstance(Substance& material, const SubstanceInput& input);

} // namespace kvSubstance
