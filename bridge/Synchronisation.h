/// @file
/// Carries the values of a material's inputs to the engine's side, where the next texture is made from them.
///
/// Values go one way, from the material to the engine's graphs. A value that the engine's side has already
/// changes nothing there (a NaN always counts as new); another one makes the outputs that depend on it out of
/// date. Nothing is reported: where nothing fits, nothing happens.
///
/// Threads: the host's, while no texture of the material is being made.
#pragma once

#include "material/Substance.h"

namespace SubstanceAir {
class InputInstanceBase;
}

namespace kvSubstance {

/// Into the given instance. When the instance is of another type than the input, nothing is stored.
KVSUBSTANCE_API void
syncValueFromSubstanceInputToInputInstanceBase(const SubstanceInput* input,
                                               SubstanceAir::InputInstanceBase* instance);

/// Into the first instance, among the material's graphs in their order, that has the input's identifier.
/// Inputs with an empty identifier match none.
KVSUBSTANCE_API void syncValueFromSubstanceInputToInputInstanceBase(kv::Reference<Substance> material,
                                                                    SubstanceInput* input);

/// The same for the first of the material's inputs, in the order of their ids, that is shown in the GUI and
/// has a component of that name (SubstanceInput::getIndexIdentifier). All its components are carried over.
KVSUBSTANCE_API void syncValueFromSubstanceInputToInputInstanceBase(kv::Reference<Substance> material,
                                                                    const kvString::CString& indexIdentifier);

} // namespace kvSubstance
