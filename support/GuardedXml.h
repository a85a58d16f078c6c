// Parses XML with TinyXML, guarded against what TinyXML itself does not withstand.
//
// TinyXML reads past the end of a text that breaks off inside a UTF-8 character, can lose itself while it
// counts rows and columns, takes a document that ends right behind its root element for a broken one,
// recurses into nested elements (as do its destructors and its printer), and compares each attribute with all
// before it. So the text is copied, with a line feed and zeros behind it; positions are not tracked; and a
// text beyond the limits below is refused before TinyXML builds anything of it.
#pragma once

#include <tinyxml.h>

#include <memory>
#include <string>

namespace support {

constexpr int maxXmlDepth = 256;       // elements inside each other, the root included
constexpr int maxXmlAttributes = 1024; // of one element

// A copy of a text with what TinyXML needs behind it. A null text is an empty one.
class GuardedText {
public:
    explicit GuardedText(const char* text);
    const char* c_str() const { return copy.c_str(); }

private:
    std::string copy;
};

// Null when the text is null, beyond the limits, or TinyXML finds an error in it. The encoding is the one
// that holds when the text begins with no XML declaration; a declaration goes by what it says, and stands for
// UTF-8 when it names none. TIXML_ENCODING_UNKNOWN looks for a byte order mark and else takes bytes as they
// are.
std::unique_ptr<TiXmlDocument> parseXmlDocument(const char* text, TiXmlEncoding encoding);
std::unique_ptr<TiXmlDocument> parseXmlDocument(const GuardedText& text, TiXmlEncoding encoding);

// Where the first element begins that is beyond the limits, in a UTF-8 text for whoever parses it without
// this guard; null when there is none.
const char* findXmlExcess(const GuardedText& text);

// Reads the element that a text begins with, as UTF-8; what follows it is ignored. False when it cannot be
// read, in the cases above: the element is then an empty one without a name.
bool parseXmlElement(const char* text, TiXmlElement& element);

} // namespace support
