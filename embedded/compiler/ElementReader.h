// Reads one element of a source, and reports what is in it that should not be.
#pragma once

#include "embedded/compiler/Diagnostic.h"

#include <tinyxml.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace embedded {

struct SourceAttribute {
    std::string name;
    std::string value;
    SourcePlace place;
};

class ElementReader {
public:
    // Both borrowed.
    ElementReader(const TiXmlElement& element, Diagnostics& diagnostics);

    SourcePlace place() const;

    // Names the element in messages, from now on: input "tint".
    void setName(std::string_view name);

    std::optional<SourceAttribute> take(const char* name);

    // Reports an absent or empty attribute.
    std::optional<SourceAttribute> require(const char* name);

    // The text, empty when absent.
    std::string text(const char* name);

    // A unique name for what the element declares: a letter or "_" (after a "$" where that is allowed), then
    // letters, digits, "_", "-" and ".". Reported and empty when it is anything else.
    std::string requireIdentifier(const char* name, bool mayBeSystem = false);

    // All attributes that were not taken.
    std::vector<SourceAttribute> takeRest();

    // Reports the attributes that were not taken.
    void finishAttributes();

    // The child elements, which have to have one of the names; others, and text, are reported.
    std::vector<const TiXmlElement*> children(const std::vector<std::string>& names);

    void error(std::string message);
    void error(const SourceAttribute& attribute, std::string message);
    void warning(const SourceAttribute& attribute, std::string message);

private:
    const TiXmlElement& element;
    Diagnostics& diagnostics;
    std::string shownName;
    std::vector<std::string> known;
};

SourcePlace placeOf(const TiXmlBase& node);

} // namespace embedded
