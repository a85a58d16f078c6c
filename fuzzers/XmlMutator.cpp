// Changes XML texts piece by piece, so that most of what a fuzzer tries is still well formed: an element is
// repeated, moved or dropped, or an attribute gets another one's value. Every other change is libFuzzer's
// own.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

// A part of the text, without its end.
struct Piece {
    std::size_t begin;
    std::size_t end;
};

// Elements from their start tag to the end tag that closes them, whatever the names say.
std::vector<Piece> elementsOf(const std::string& text) {
    std::vector<Piece> found;
    std::vector<std::size_t> open;
    for (std::size_t at = 0; (at = text.find('<', at)) != std::string::npos;) {
        const std::size_t end = text.find('>', at);
        if (end == std::string::npos) break;
        const char next = text[at + 1];
        if (next == '/' && !open.empty()) {
            found.push_back({open.back(), end + 1});
            open.pop_back();
        } else if (next != '/' && next != '!' && next != '?') {
            if (text[end - 1] == '/')
                found.push_back({at, end + 1});
            else
                open.push_back(at);
        }
        at = end;
    }
    return found;
}

// What stands between quotes behind an equals sign.
std::vector<Piece> valuesOf(const std::string& text) {
    std::vector<Piece> found;
    for (std::size_t at = 0; (at = text.find('=', at)) != std::string::npos;) {
        ++at;
        if (at >= text.size() || (text[at] != '"' && text[at] != '\'')) continue;
        const std::size_t end = text.find(text[at], at + 1);
        if (end == std::string::npos) break;
        found.push_back({at + 1, end});
        at = end;
    }
    return found;
}

class Mutation {
public:
    explicit Mutation(unsigned int seed)
        : random_(seed) {}

    std::string run(std::string text) {
        switch (random_() % 6) {
        case 0:
            return repeatElement(std::move(text));
        case 1:
            return dropElement(std::move(text));
        case 2:
            return replaceElement(std::move(text));
        case 3:
            return copyValue(std::move(text));
        default:
            return changeValue(std::move(text));
        }
    }

private:
    const Piece* pick(const std::vector<Piece>& pieces) {
        return pieces.empty() ? nullptr : &pieces[random_() % pieces.size()];
    }

    // In front of another element, or a few times beside itself.
    std::string repeatElement(std::string text) {
        const std::vector<Piece> elements = elementsOf(text);
        const Piece* const from = pick(elements);
        const Piece* const to = pick(elements);
        if (!from) return text;
        const std::string copy = text.substr(from->begin, from->end - from->begin);
        for (unsigned int i = 0; i <= random_() % 3; ++i) text.insert(to->begin, copy);
        return text;
    }

    std::string dropElement(std::string text) {
        const std::vector<Piece> elements = elementsOf(text);
        const Piece* const piece = pick(elements);
        return piece ? text.erase(piece->begin, piece->end - piece->begin) : text;
    }

    std::string replaceElement(std::string text) { return replace(text, elementsOf(text)); }

    std::string copyValue(std::string text) { return replace(text, valuesOf(text)); }

    std::string replace(const std::string& text, const std::vector<Piece>& pieces) {
        const Piece* const from = pick(pieces);
        const Piece* const to = pick(pieces);
        if (!from) return text;
        std::string changed = text;
        return changed.replace(to->begin, to->end - to->begin, text, from->begin, from->end - from->begin);
    }

    // By a number of interest, or as libFuzzer likes.
    std::string changeValue(std::string text) {
        static const char* const numbers[] = {"0",    "1",           "-1",    "2147483648", "4294967295",
                                              "1e38", "0.5,0.5",     "1,2,3", "1,2,3,4",    "nan",
                                              "",     "-2147483648", "1e-42", "35",         "36"};
        const std::vector<Piece> values = valuesOf(text);
        const Piece* const piece = pick(values);
        if (!piece) return text;
        const std::size_t length = piece->end - piece->begin;
        if (random_() % 3 == 0)
            return text.replace(piece->begin, length, numbers[random_() % std::size(numbers)]);
        constexpr std::size_t room = 16;
        std::string value = text.substr(piece->begin, length);
        value.resize(length + room);
        value.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(value.data()), length, value.size()));
        return text.replace(piece->begin, length, value);
    }

    std::minstd_rand random_;
};

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
    if (seed % 2 == 0) return LLVMFuzzerMutate(data, size, maxSize);
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string changed = Mutation(seed).run(text);
    if (changed.size() > maxSize || changed == text) return LLVMFuzzerMutate(data, size, maxSize);
    std::copy(changed.begin(), changed.end(), data);
    return changed.size();
}
