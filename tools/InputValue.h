// Values for a material's inputs: read from what a person or a preset says, and handed to the material.
#pragma once

#include "embedded/nodes/Value.h"
#include "material/Substance.h"

#include <string>
#include <string_view>

namespace tool {

embedded::ValueType valueTypeOf(kvSubstance::Type type);

std::string textOf(const kvString::IString& text);

// Numbers with commas between them, one number for all components, "#rrggbb" for colours, or the text of a
// combo item. Throws Failure when the text does not fit the input's type or choices, or, where the input
// clamps, its range; the message begins with the place.
embedded::Value parseInputValue(kvSubstance::SubstanceInput& input, std::string_view text,
                                const std::string& place);

// Through the setters that a host calls, and on to the engine's side.
void setInputValue(const kv::Reference<kvSubstance::Substance>& material, kvSubstance::SubstanceInput& input,
                   const embedded::Value& value);

// Throws Failure, with the nearest identifiers, when there is no such input.
kvSubstance::SubstanceInput& requireInput(const kvSubstance::Substance& material,
                                          const std::string& identifier, const std::string& place);

// Prints a note when several inputs have the identifier. The library carries values to the engine's side by
// identifier, and reaches one of them, or, where their types differ, none.
void noteIfAmbiguous(const kvSubstance::Substance& material, const std::string& identifier,
                     const std::string& place);

} // namespace tool
