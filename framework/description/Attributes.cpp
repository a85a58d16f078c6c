#include "framework/description/Attributes.h"

#include "support/Numbers.h"

#include <algorithm>
#include <cstring>

namespace SubstanceAir {

namespace {

bool beginsWithInteger(const char* text) {
    text += std::strspn(text, " \t\n\v\f\r");
    if (*text == '-' || *text == '+') ++text;
    return *text >= '0' && *text <= '9';
}

} // namespace

std::string textAttribute(const TiXmlElement& element, const char* name) {
    const char* const text = element.Attribute(name);
    return text ? text : "";
}

unsigned int unsignedAttribute(const TiXmlElement& element, const char* name) {
    return support::wholeOrZero<unsigned int>(element.Attribute(name));
}

int integerAttribute(const TiXmlElement& element, const char* name, int startingValue) {
    const char* const text = element.Attribute(name);
    return text && beginsWithInteger(text) ? support::leadingInteger(text) : startingValue;
}

const TiXmlElement* rootElement(const TiXmlDocument& document, const char* name) {
    const TiXmlElement* const root = document.RootElement();
    return root && root->ValueStr() == name ? root : nullptr;
}

size_t countChildren(const TiXmlElement& element, const char* name) {
    size_t count = 0;
    forEachChild(element, name, [&count](const TiXmlElement&) { ++count; });
    return count;
}

size_t roomForChildren(const TiXmlElement& element, const char* name) {
    const int announced = std::max(integerAttribute(element, "count", 0), 0);
    return std::min(static_cast<size_t>(announced), countChildren(element, name));
}

} // namespace SubstanceAir
