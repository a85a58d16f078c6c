#include "framework/description/CompactXml.h"

#include <tinyxml.h>

#include <array>

namespace SubstanceAir {

namespace {

constexpr size_t usualSize = 320; // characters of the GUI of an input

bool isPlain(const std::string& text) {
    // By character: whether the printer writes it otherwise than it stands.
    static constexpr std::array<bool, 256> encoded = [] {
        std::array<bool, 256> all{};
        for (std::size_t c = 0; c < ' '; ++c) all[c] = true;
        for (const char c : {'&', '<', '>', '"', '\''}) all[static_cast<unsigned char>(c)] = true;
        return all;
    }();
    bool isAny = false; // looking at all of them takes less time than stopping at the first
    for (const char c : text) isAny |= encoded[static_cast<unsigned char>(c)];
    return !isAny;
}

void appendEncoded(std::string& printed, const std::string& text) {
    if (isPlain(text)) {
        printed += text;
        return;
    }
    std::string encoded;
    TiXmlBase::EncodeString(text, &encoded);
    printed += encoded;
}

void appendAttribute(std::string& printed, const TiXmlAttribute& attribute) {
    const std::string& value = attribute.ValueStr();
    const char quote = value.find('"') == std::string::npos ? '"' : '\'';
    printed += ' ';
    appendEncoded(printed, attribute.NameTStr());
    printed += '=';
    printed += quote;
    appendEncoded(printed, value);
    printed += quote;
}

// TinyXML's printer takes several times as long for what nearly all elements consist of: attributes, and
// other elements inside. False, with something or other printed, for one that has anything else in it.
bool printElements(std::string& printed, const TiXmlElement& element) {
    printed += '<';
    printed += element.ValueStr();
    const TiXmlAttribute* attribute = element.FirstAttribute();
    for (; attribute; attribute = attribute->Next()) appendAttribute(printed, *attribute);
    const TiXmlNode* child = element.FirstChild();
    if (!child) {
        printed += " />";
        return true;
    }
    printed += '>';
    for (; child; child = child->NextSibling())
        if (!child->ToElement() || !printElements(printed, *child->ToElement())) return false;
    printed += "</";
    printed += element.ValueStr();
    printed += '>';
    return true;
}

} // namespace

std::string compactXml(const TiXmlElement& element) {
    std::string printed;
    printed.reserve(usualSize);
    if (printElements(printed, element)) return printed;
    TiXmlPrinter printer;
    printer.SetStreamPrinting();
    element.Accept(&printer);
    return printer.Str();
}

} // namespace SubstanceAir
