// Package sources as XML documents.
#pragma once

#include "embedded/compiler/Diagnostic.h"

#include <tinyxml.h>

#include <cstddef>
#include <memory>
#include <string_view>

namespace embedded {

constexpr std::size_t maxSourceSize = std::size_t{16} << 20;

// With the places of all elements and attributes. Null, with the reason in the diagnostics, for what is no
// well-formed XML in UTF-8, or beyond the limits of support/GuardedXml.h.
std::unique_ptr<TiXmlDocument> parseSource(std::string_view source, Diagnostics& diagnostics);

} // namespace embedded
