#include "support/GuardedXml.h"

#include <array>
#include <cstring>
#include <string>

namespace support {

namespace {

// A broken UTF-8 character makes TinyXML step over up to three bytes behind the text.
constexpr size_t zerosBehindText = 8;

bool beginsName(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool continuesName(char c) {
    static constexpr std::array<bool, 256> allowed = [] {
        std::array<bool, 256> all{};
        for (size_t letter = 'a'; letter <= 'z'; ++letter) all[letter] = all[letter - 'a' + 'A'] = true;
        for (size_t digit = '0'; digit <= '9'; ++digit) all[digit] = true;
        for (const char mark : {'_', '-', '.', ':'}) all[static_cast<unsigned char>(mark)] = true;
        return all;
    }();
    return allowed[static_cast<unsigned char>(c)];
}

// Characters that mean the same in any encoding and begin nothing longer.
bool isPlainInValue(char c) {
    return c > ' ' && c < 0x7F && c != '&' && c != '"' && c != '\'';
}

// The end of the name at a place, which reads the same in any encoding. Null for one that does not begin in
// ASCII or goes on outside of it.
const char* plainNameEnd(const char* place) {
    if (!beginsName(*place)) return nullptr;
    while (continuesName(*place)) ++place;
    return static_cast<unsigned char>(*place) < 0x7F ? place : nullptr;
}

// Walks a text the way TinyXML's parser does, with the same readers (they are protected, hence the base), so
// that the two never see different structures. But it builds no tree and does not recurse. Where TinyXML
// would stop with an error, the walk may stop or go on: the text is not accepted either way.
//
// TinyXML's readers keep what they read, which takes nearly as long as the parse. Ordinary tags, whose end is
// beyond doubt, are therefore stepped over by short cuts of the walk's own.
class StructureScan : private TiXmlElement {
public:
    explicit StructureScan(TiXmlEncoding assumedEncoding)
        : TiXmlElement("")
        , encoding(assumedEncoding) {}

    bool isDocumentWithinLimits(const char* text) {
        if (encoding == TIXML_ENCODING_UNKNOWN && std::strncmp(text, "\xEF\xBB\xBF", 3) == 0) {
            encoding = TIXML_ENCODING_UTF8;
        }
        const char* place = skipBlanks(text);
        while (place && *place && isWithinLimits && (depth > 0 || *place == '<')) place = readNext(place);
        return isWithinLimits;
    }

    // The start tag that is beyond the limits, once they are exceeded.
    const char* excess() const { return isWithinLimits ? nullptr : lastStartTag; }

    bool isElementWithinLimits(const char* text) {
        const char* place = skipBlanks(text);
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
        if (*place == '<' && beginsName(place[1])) {
            place = readStartTag(place);
        } else if (*place != '<') {
            TiXmlText characters("");
            place = characters.Parse(place, nullptr, encoding);
        } else if (depth > 0 && place[1] == '/') {
            place = readEndTag(place);
        } else {
            place = readNode(place);
        }
        return skipBlanks(place);
    }

    const char* skipBlanks(const char* place) const {
        if (!place) return nullptr;
        while (*place == ' ' || *place == '\n' || *place == '\t' || *place == '\r') ++place;
        return *place > ' ' && *place < 0x7F ? place : SkipWhiteSpace(place, encoding);
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
        lastStartTag = place;
        isWithinLimits = depth < maxXmlDepth;
        place = readTagName(skipBlanks(place + 1));
        for (int attributes = 0; isWithinLimits; ++attributes) {
            place = skipBlanks(place);
            if (!place || !*place) return nullptr;
            if (*place == '/') return place[1] == '>' ? place + 2 : nullptr;
            if (*place == '>') {
                ++depth;
                return place + 1;
            }
            place = readAttribute(place);
            isWithinLimits = attributes < maxXmlAttributes;
        }
        return nullptr;
    }

    const char* readTagName(const char* place) const {
        if (!place) return nullptr;
        if (const char* const end = plainNameEnd(place)) return end;
        std::string name;
        return ReadName(place, &name, encoding);
    }

    const char* readAttribute(const char* place) const {
        if (const char* const end = plainAttributeEnd(place)) return end;
        TiXmlAttribute attribute;
        return attribute.Parse(place, nullptr, encoding);
    }

    // Null for an attribute that is not a plain name with a quoted value, or whose value holds what is left
    // to TinyXML: the end of the text, and entities for numbers, which may reach further than they seem to.
    const char* plainAttributeEnd(const char* place) const {
        place = plainNameEnd(place);
        if (place) place = skipBlanks(place);
        if (!place || *place != '=') return nullptr;
        place = skipBlanks(place + 1);
        if (!place || (*place != '"' && *place != '\'')) return nullptr;
        const char quote = *place++;
        while (*place != quote) {
            if (isPlainInValue(*place)) {
                ++place;
                continue;
            }
            const int length = encoding == TIXML_ENCODING_UTF8 ? utf8Length(*place) : 1;
            if (length == 0 || !*place || (*place == '&' && place[1] == '#')) return nullptr;
            for (int k = 1; k < length; ++k)
                if (!place[k]) return nullptr;
            place += length;
        }
        return place + 1;
    }

    static int utf8Length(char lead) {
        const auto byte = static_cast<unsigned char>(lead);
        return byte < 0x80 ? 1 : utf8ByteTable[byte];
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
    const char* lastStartTag = nullptr;
};

} // namespace

GuardedText::GuardedText(const char* text) {
    const size_t length = text ? std::strlen(text) : 0;
    copy.reserve(length + 1 + zerosBehindText);
    copy.append(text ? text : "", length);
    copy += '\n';
    copy.append(zerosBehindText, '\0');
}

std::unique_ptr<TiXmlDocument> parseXmlDocument(const char* text, TiXmlEncoding encoding) {
    return text ? parseXmlDocument(GuardedText(text), encoding) : nullptr;
}

std::unique_ptr<TiXmlDocument> parseXmlDocument(const GuardedText& text, TiXmlEncoding encoding) {
    if (StructureScan::beginsWithDeclaration(text.c_str())) encoding = TIXML_ENCODING_UNKNOWN;
    if (!StructureScan(encoding).isDocumentWithinLimits(text.c_str())) return nullptr;
    auto document = std::make_unique<TiXmlDocument>();
    document->SetTabSize(0);
    if (!document->Parse(text.c_str(), nullptr, encoding) || document->Error()) return nullptr;
    return document;
}

const char* findXmlExcess(const GuardedText& text) {
    StructureScan scan(TIXML_ENCODING_UTF8);
    scan.isDocumentWithinLimits(text.c_str());
    return scan.excess();
}

bool parseXmlElement(const char* text, TiXmlElement& element) {
    element = TiXmlElement("");
    if (!text) return false;
    const GuardedText guarded(text);
    if (StructureScan(TIXML_ENCODING_UTF8).isElementWithinLimits(guarded.c_str()) &&
        element.Parse(guarded.c_str(), nullptr, TIXML_ENCODING_UTF8)) {
        return true;
    }
    element = TiXmlElement("");
    return false;
}

} // namespace support
