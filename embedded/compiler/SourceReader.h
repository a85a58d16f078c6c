// From XML to a source.
#pragma once

#include "embedded/compiler/Source.h"

#include <tinyxml.h>

namespace embedded {

// Reads all that can be read, also after errors.
std::vector<SourceGraph> readSource(const TiXmlDocument& document, Diagnostics& diagnostics);

} // namespace embedded
