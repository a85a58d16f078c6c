#include "support/GuardedXml.h"

#include <cstring>
#include <string>

namespace support {

namespace {

// A broken UTF-8 character makes TinyXML step over up to three bytes behind the text.
constexpr size_t zerosBehindText = 8;

std::string guardedCopy(const char* text) {
    std::string copy(text);
    copy += '\n';
    copy.append(zerosBehindText, '\0');
    return copy;
}

// Walks a text the way TinyXML's parser does, with the same readers (they are protected, hence the base), so
// that the two never see different structures. But it builds no tree and does not recurse. Where TinyXML
// would stop with an error, the walk may stop or go on: the text is not accepted either way.
class StructureScan : private TiXmlElement {
public:
    explicit StructureScan(TiXmlEncoding assumedEncoding)
        : TiXmlElement("")
        , encoding(assumedEncoding) {}

    bool isDocumentWithinLimits(const char* text) {
        if (encoding == TIXML_ENCODING_UNKNOWN && std::strncmp(text, "\xEF\xBB\xBF", 3) == 0) {
            encoding = TIXML_ENCODING_UTF8;
        }
        const char* place = SkipWhiteSpace(text, encoding);
        while (place && *place && isWithinLimits && (depth > 0 || *place == '<')) place = readNext(place);
        return isWithinLimits;
    }

    bool isElementWithinLimits(const char* text) {
        const char* place = SkipWhiteSpace(text, encoding);
        if (place && *place == '<') place = readStartTag(place);
        while (place && *place && isWithinLimits && depth > 0) place = readNext(place);
        return isWithinLimits;
    }

    static bool beginsWithDeclaration(const char* text) {
        const char* const place = SkipWhiteSpace(text, TIXML_ENCODING_UTF8);
        return place && *place && StringEqual(place, "<?xml", true, TIXML_ENCODING_UTF8);
    }

private:
    // Each reader returns the place behind what it read, or null after an error.
    const char* readNext(const char* place) {
        if (*place != '<') {
            TiXmlText characters("");
            place = characters.Parse(place, nullptr, encoding);
        } else if (depth > 0 && place[1] == '/') {
            place = readEndTag(place);
        } else {
            place = readNode(place);
        }
        return SkipWhiteSpace(place, encoding);
    }

    const char* readNode(const char* place) {
        const std::unique_ptr<TiXmlNode> node(Identify(place, encoding));
        if (!node) return nullptr;
        if (node->ToElement()) return readStartTag(place);
        place = node->Parse(place, nullptr, encoding);
        if (depth == 0 && encoding == TIXML_ENCODING_UNKNOWN && node->ToDeclaration()) {
            encoding = encodingNamed(node->ToDeclaration()->Encoding());
        }
        return place;
    }

    const char* readStartTag(const char* place) {
        isWithinLimits = depth < maxXmlDepth;
        std::string name;
        place = SkipWhiteSpace(place + 1, encoding);
        if (place) place = ReadName(place, &name, encoding);
        for (int attributes = 0; isWithinLimits; ++attributes) {
            place = SkipWhiteSpace(place, encoding);
            if (!place || !*place) return nullptr;
            if (*place == '/') return place[1] == '>' ? place + 2 : nullptr;
            if (*place == '>') {
                ++depth;
                return place + 1;
            }
            TiXmlAttribute attribute;
            place = attribute.Parse(place, nullptr, encoding);
            isWithinLimits = attributes < maxXmlAttributes;
        }
        return nullptr;
    }

    // TinyXML accepts nothing but the name and blanks before the bracket.
    const char* readEndTag(const char* place) {
        --depth;
        const char* const bracket = std::strchr(place, '>');
        return bracket ? bracket + 1 : nullptr;
    }

    static TiXmlEncoding encodingNamed(const char* name) {
        const bool isUtf8 = *name == '\0' || StringEqual(name, "UTF-8", true, TIXML_ENCODING_UNKNOWN) ||
                            StringEqual(name, "UTF8", true, TIXML_ENCODING_UNKNOWN);
        return isUtf8 ? TIXML_ENCODING_UTF8 : TIXML_ENCODING_LEGACY;
    }

    TiXmlEncoding encoding;
    int depth = 0;
    bool isWithinLimits = true;
};

} // namespace

std::unique_ptr<TiXmlDocument> parseXmlDocument(const char* text, TiXmlEncoding encoding) {
    if (!text) return nullptr;
    if (StructureScan::beginsWithDeclaration(text)) encoding = TIXML_ENCODING_UNKNOWN;
    const std::string copy = guardedCopy(text);
    if (!StructureScan(encoding).isDocumentWithinLimits(copy.c_str())) return nullptr;
    auto document = std::make_unique<TiXmlDocument>();
    document->SetTabSize(0);
    if (!document->Parse(copy.c_str(), nullptr, encoding) || document->Error()) return nullptr;
    return document;
}

bool parseXmlElement(const char* text, TiXmlElement& element) {
    element = TiXmlElement("");
    if (!text) return false;
    const std::string copy = guardedCopy(text);
    if (StructureScan(TIXML_ENCODING_UTF8).isElementWithinLimits(copy.c_str()) &&
        element.Parse(copy.c_str(), nullptr, TIXML_ENCODING_UTF8)) {
        return true;
    }
    element = TiXmlElement("");
    return false;
}

} // namespace support
