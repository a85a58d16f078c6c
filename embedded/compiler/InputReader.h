// Reads the inputs of a source, and values for them.
#pragma once

#include "embedded/compiler/Source.h"

#include <tinyxml.h>

#include <optional>

namespace embedded {

SourceInput readInput(const TiXmlElement& element, Diagnostics& diagnostics);

// Nothing, after a report, for a text that is no value of the type.
std::optional<Value> readValue(ElementReader& reader, const SourceAttribute& attribute, ValueType type);

// Reports a value outside the input's range, or, for a combo box, of none of its items.
void checkValue(ElementReader& reader, const SourceAttribute& attribute, const SourceInput& input,
                const Value& value);

} // namespace embedded
