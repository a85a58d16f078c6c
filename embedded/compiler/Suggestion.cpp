#include "embedded/compiler/Suggestion.h"

#include <algorithm>

namespace embedded {

namespace {

constexpr std::size_t maxListed = 16;
constexpr std::size_t maxSuggested = 3;
constexpr std::size_t maxCompared = 64; // longer names are not worth the squared effort

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// V. I. Levenshtein (1966), "Binary codes capable of correcting deletions, insertions and reversals"; letter
// case is ignored.
std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (lower(a[i]) == lower(b[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row[b.size()];
}

std::string joined(const std::vector<std::string>& names, const char* separator) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : separator) + name;
    return text;
}

} // namespace

std::string quoted(std::string_view text) {
    std::string line(text);
    for (char& c : line)
        if (static_cast<unsigned char>(c) < ' ') c = '?'; // messages are one line each
    return "\"" + line + "\"";
}

std::string suggestion(std::string_view name, const std::vector<std::string>& realNames) {
    std::size_t nearest = std::max<std::size_t>(2, name.size() / 3) + 1;
    std::vector<std::string> near;
    for (const std::string& real : realNames) {
        if (name.size() > maxCompared || real.size() > maxCompared) continue;
        const std::size_t distance = editDistance(name, real);
        if (distance > nearest || distance >= std::max(name.size(), real.size())) continue;
        if (distance < nearest) near.clear();
        nearest = distance;
        const bool isListed = std::find(near.begin(), near.end(), quoted(real)) != near.end();
        if (!isListed && near.size() < maxSuggested) near.push_back(quoted(real));
    }
    if (!near.empty()) return "; did you mean " + joined(near, " or ") + "?";
    if (realNames.empty()) return "; there are none";
    if (realNames.size() > maxListed) return "";
    return "; there are " + joined(realNames, ", ");
}

} // namespace embedded
