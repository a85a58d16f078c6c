#include "embedded/compiler/SourceDocument.h"

#include "support/GuardedXml.h"

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
    const support::GuardedText text(std::string(source).c_str());
    const auto placeOf = [&](const char* position) {
        return placeAt(source, std::min(static_cast<std::size_t>(position - text.c_str()), source.size()));
    };
    if (const char* const excess = support::findXmlExcess(text)) {
        diagnostics.error(placeOf(excess), "file",
                          "elements are nested too deeply, or have too many attributes");
        return nullptr;
    }
    auto document = std::make_unique<TiXmlDocument>();
    document->SetTabSize(1);
    const char* const end = document->Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
    if (document->Error()) {
        const SourcePlace place{std::max(1, document->ErrorRow()), std::max(1, document->ErrorCol())};
        diagnostics.error(place, "file", std::string("is not well-formed XML: ") + document->ErrorDesc());
        return nullptr;
    }
    if (end && *end) {
        diagnostics.error(placeOf(end), "file", "there may be no text outside of the root element");
        return nullptr;
    }
    return document;
}

} // namespace embedded
