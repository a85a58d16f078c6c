// The host-side inputs of a material, from the engine-side ones.
#pragma once

#include "material/Types.h"

namespace SubstanceAir {
class InputInstanceBase;
}

namespace kvSubstance {

class Substance;

// The host's type for a framework input type; false for images and unknown codes, which have none.
bool findHostType(unsigned int frameworkType, Type& type);

// Creates the input of the material that mirrors the instance: the present value as value and default, and
// the widget, texts, range and combo items of its GUI text. Nothing for an image.
void createInput(Substance& material, const SubstanceAir::InputInstanceBase& instance);

} // namespace kvSubstance
