#include "embedded/compiler/ElementReader.h"

#include "embedded/compiler/Suggestion.h"

#include <algorithm>

namespace embedded {

namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isIdentifier(std::string_view text) {
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), [](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
    });
}

} // namespace

SourcePlace placeOf(const TiXmlBase& node) {
    return {node.Row(), node.Column()};
}

ElementReader::ElementReader(const TiXmlElement& read, Diagnostics& reports)
    : element(read)
    , diagnostics(reports)
    , shownName(read.ValueStr()) {}

SourcePlace ElementReader::place() const {
    return placeOf(element);
}

void ElementReader::setName(std::string_view name) {
    shownName = element.ValueStr() + " " + quoted(name);
}

std::optional<SourceAttribute> ElementReader::take(const char* name) {
    if (std::find(known.begin(), known.end(), name) == known.end()) known.emplace_back(name);
    for (const TiXmlAttribute* attribute = element.FirstAttribute(); attribute; attribute = attribute->Next())
        if (attribute->NameTStr() == name)
            return SourceAttribute{name, attribute->ValueStr(), placeOf(*attribute)};
    return std::nullopt;
}

std::optional<SourceAttribute> ElementReader::require(const char* name) {
    auto attribute = take(name);
    if (!attribute) {
        error(std::string("needs the attribute ") + name);
    } else if (attribute->value.empty()) {
        error(*attribute, "may not be empty");
        return std::nullopt;
    }
    return attribute;
}

std::string ElementReader::text(const char* name) {
    const auto attribute = take(name);
    return attribute ? attribute->value : std::string();
}

std::string ElementReader::requireIdentifier(const char* name, bool mayBeSystem) {
    const auto attribute = require(name);
    if (!attribute) return {};
    const bool isSystem = mayBeSystem && attribute->value.front() == '$';
    if (!isIdentifier(std::string_view(attribute->value).substr(isSystem ? 1 : 0))) {
        error(*attribute,
              quoted(attribute->value) +
                  " is no name; begin with a letter or _ and go on with letters, digits, _, - and .");
        return {};
    }
    setName(attribute->value);
    return attribute->value;
}

std::vector<SourceAttribute> ElementReader::takeRest() {
    std::vector<SourceAttribute> rest;
    for (const TiXmlAttribute* attribute = element.FirstAttribute(); attribute; attribute = attribute->Next())
        if (std::find(known.begin(), known.end(), attribute->Name()) == known.end())
            rest.push_back({attribute->NameTStr(), attribute->ValueStr(), placeOf(*attribute)});
    return rest;
}

void ElementReader::finishAttributes() {
    for (const SourceAttribute& attribute : takeRest())
        error(attribute, "is not known here" + suggestion(attribute.name, known));
}

std::vector<const TiXmlElement*> ElementReader::children(const std::vector<std::string>& names) {
    std::vector<const TiXmlElement*> found;
    for (const TiXmlNode* child = element.FirstChild(); child; child = child->NextSibling()) {
        if (child->ToComment()) continue;
        const TiXmlElement* childElement = child->ToElement();
        if (childElement && std::find(names.begin(), names.end(), childElement->ValueStr()) != names.end()) {
            found.push_back(childElement);
        } else if (childElement) {
            diagnostics.error(placeOf(*child), shownName,
                              "may not hold the element " + quoted(child->ValueStr()) +
                                  suggestion(child->ValueStr(), names));
        } else {
            diagnostics.error(placeOf(*child), shownName,
                              "may not hold text; values are written as attributes");
        }
    }
    return found;
}

void ElementReader::error(std::string message) {
    diagnostics.error(place(), shownName, std::move(message));
}

void ElementReader::error(const SourceAttribute& attribute, std::string message) {
    diagnostics.error(attribute.place, shownName + ", attribute " + attribute.name, std::move(message));
}

void ElementReader::warning(const SourceAttribute& attribute, std::string message) {
    diagnostics.warning(attribute.place, shownName + ", attribute " + attribute.name, std::move(message));
}

} // namespace embedded
