#include "embedded/compiler/SourceDocument.h"

#include <algorithm>
#include <optional>
#include <string>

namespace embedded {

namespace {

SourcePlace placeAt(std::string_view source, std::size_t position) {
    const std::string_view before = source.substr(0, position);
    const auto lineStart = before.rfind('\n') + 1; // 0 when there is none
    return {1 + static_cast<int>(std::count(before.begin(), before.end(), '\n')),
            1 + static_cast<int>(position - lineStart)};
}

// The length of the character that begins the text, 0 when it is no UTF-8. Overlong forms are not looked for.
std::size_t characterLength(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first == 0     ? 0
                               : first < 0x80 ? 1
                               : first < 0xC2 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    if (length > text.size()) return 0;
    const bool continues =
        std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length > 0 ? length : 1),
                    [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; });
    return continues ? length : 0;
}

std::optional<std::size_t> findBadCharacter(std::string_view source) {
    for (std::size_t position = 0; position < source.size();) {
        const std::size_t length = characterLength(source.substr(position));
        if (length == 0) return position;
        position += length;
    }
    return std::nullopt;
}

// Walks over the tags as TinyXML will, without recursion. What is ill-formed is left to TinyXML, which stops
// there.
class NestingGuard {
public:
    explicit NestingGuard(std::string_view checked)
        : source(checked) {}

    // Where the limits are exceeded.
    std::optional<std::size_t> findExcess() {
        while (position < source.size()) {
            if (source[position] != '<') {
                ++position;
            } else if (startsWith("<!--")) {
                skipPast("-->");
            } else if (startsWith("<![CDATA[")) {
                skipPast("]]>");
            } else if (startsWith("</")) {
                if (depth > 0) --depth;
                skipPast(">");
            } else if (startsWith("<!") || startsWith("<?")) {
                skipPast(">");
            } else {
                const std::size_t start = position;
                if (!passTag()) return start;
            }
        }
        return std::nullopt;
    }

private:
    bool startsWith(std::string_view text) const { return source.substr(position, text.size()) == text; }

    void skipPast(std::string_view text) {
        const auto found = source.find(text, position);
        position = found == std::string_view::npos ? source.size() : found + text.size();
    }

    bool passTag() {
        std::size_t attributes = 0;
        for (++position; position < source.size() && source[position] != '>'; ++position) {
            if (source[position] != '=') continue;
            if (++attributes > maxSourceAttributes) return false;
            const auto value = source.find_first_not_of(" \t\r\n", position + 1);
            if (value == std::string_view::npos || (source[value] != '"' && source[value] != '\'')) continue;
            position = std::min(source.find(source[value], value + 1), source.size() - 1);
        }
        const bool closesItself = position < source.size() && source[position - 1] == '/';
        if (!closesItself) ++depth;
        return depth <= maxSourceDepth;
    }

    std::string_view source;
    std::size_t position = 0;
    std::size_t depth = 0;
};

} // namespace

std::unique_ptr<TiXmlDocument> parseSource(std::string_view source, Diagnostics& diagnostics) {
    if (source.size() > maxSourceSize) {
        diagnostics.error({}, "file", "is larger than 16 MiB, so it is hardly a package source");
        return nullptr;
    }
    if (const auto bad = findBadCharacter(source)) {
        diagnostics.error(placeAt(source, *bad), "file", "is not UTF-8 here; save the source as UTF-8");
        return nullptr;
    }
    if (const auto excess = NestingGuard(source).findExcess()) {
        diagnostics.error(placeAt(source, *excess), "file",
                          "elements are nested too deeply, or have too many attributes");
        return nullptr;
    }
    auto document = std::make_unique<TiXmlDocument>();
    document->SetTabSize(1);
    document->Parse((std::string(source) + "\n").c_str(), nullptr, TIXML_ENCODING_UTF8);
    if (document->Error()) {
        const SourcePlace place{std::max(1, document->ErrorRow()), std::max(1, document->ErrorCol())};
        diagnostics.error(place, "file", std::string("is not well-formed XML: ") + document->ErrorDesc());
        return nullptr;
    }
    return document;
}

} // namespace embedded
