// Printing XML elements without indentation and line breaks.
#pragma once

#include <string>

class TiXmlElement;

namespace SubstanceAir {

// As TinyXML's printer prints the element in stream mode.
std::string compactXml(const TiXmlElement& element);

} // namespace SubstanceAir
