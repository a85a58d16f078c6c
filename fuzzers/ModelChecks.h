// What holds for every material, whatever it was made from.
#pragma once

#include "material/Substance.h"

namespace fuzzing {

// Reads everything that the inputs tell.
void readInputs(kvSubstance::Substance& material);

// What is read back after writing is what was written: from the first time on a state string is its own.
void checkStateString(kvSubstance::Substance& material);

} // namespace fuzzing
