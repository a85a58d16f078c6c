// Reading the elements and attributes of description documents. What is absent or malformed is empty or 0.
#pragma once

#include <tinyxml.h>

#include <cstddef>
#include <string>

namespace SubstanceAir {

std::string textAttribute(const TiXmlElement& element, const char* name);

// The whole text must be one number.
unsigned int unsignedAttribute(const TiXmlElement& element, const char* name);

// As TinyXML queries an integer: leading blanks and whatever follows the number are passed over. A text that
// does not begin with a number is as good as none and gives the starting value.
int integerAttribute(const TiXmlElement& element, const char* name, int startingValue);

// The root of the document, when it has that name.
const TiXmlElement* rootElement(const TiXmlDocument& document, const char* name);

// Calls back for every child element of that name, in document order.
template <class Callback>
void forEachChild(const TiXmlElement& element, const char* name, const Callback& callback) {
    const TiXmlElement* child = element.FirstChildElement(name);
    for (; child; child = child->NextSiblingElement(name)) callback(*child);
}

size_t countChildren(const TiXmlElement& element, const char* name);

// For how many children the element asks to reserve room by its "count": never for more than it has.
size_t roomForChildren(const TiXmlElement& element, const char* name);

} // namespace SubstanceAir
