#include "platform/base/Strings.h"

#include <algorithm>
#include <string_view>

namespace kvUtil {

namespace {

std::string_view trimmed(std::string_view piece) {
    const char* const blanks = " \t\r\n";
    const size_t first = piece.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return piece.substr(first, piece.find_last_not_of(blanks) - first + 1);
}

} // namespace

std::vector<kvString::CString> split(const kvString::CString& text, char separator, bool keepEmpty,
                                     bool trim) {
    std::vector<kvString::CString> pieces;
    if (text.empty()) return pieces;
    const std::string_view whole(text.asChar(), text.length());
    for (size_t begin = 0; begin <= whole.size();) {
        const size_t end = std::min(whole.find(separator, begin), whole.size());
        std::string_view piece = whole.substr(begin, end - begin);
        if (trim) piece = trimmed(piece);
        if (keepEmpty || !piece.empty()) pieces.emplace_back(piece.data(), piece.size());
        begin = end + 1;
    }
    return pieces;
}

} // namespace kvUtil
