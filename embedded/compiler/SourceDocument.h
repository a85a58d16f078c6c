// Package sources as XML documents.
#pragma once

#include "embedded/compiler/Diagnostic.h"

#include <tinyxml.h>

#include <cstddef>
#include <memory>
#include <string_view>

namespace embedded {

// TinyXML calls itself for each level of nesting, and searches an element's attributes one by one.
constexpr std::size_t maxSourceSize = std::size_t{16} << 20;
constexpr std::size_t maxSourceDepth = 64;
constexpr std::size_t maxSourceAttributes = 256;

// With the places of all elements and attributes. Null, with the reason in the diagnostics, for what is no
// well-formed XML in UTF-8.
std::unique_ptr<TiXmlDocument> parseSource(std::string_view source, Diagnostics& diagnostics);

} // namespace embedded
