// Changes sources as what they are, elements with attributes, and drops some of what the compiler complains
// of, so that many of them compile.
#include "embedded/compiler/Compiler.h"
#include "fuzzers/Fuzzing.h"

#include <random>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t mostSize);

namespace {

using Part = std::pair<std::size_t, std::size_t>; // of a text: begin and size

// From the one mark to the other, both taken along, with no tag between them.
std::vector<Part> partsOf(const std::string& text, const std::string& open, const std::string& close) {
    std::vector<Part> parts;
    for (auto begin = text.find(open); begin != std::string::npos; begin = text.find(open, begin + 1)) {
        const std::size_t end = text.find(close, begin + open.size());
        if (end < text.find('<', begin + 1)) parts.emplace_back(begin, end + close.size() - begin);
    }
    return parts;
}

// Drops an element that has none inside, or repeats it under another name; or gives an attribute the value of
// another one of its name, or another digit.
void change(std::string& text, std::minstd_rand& random) {
    const unsigned kind = random() % 4;
    std::vector<Part> parts = kind < 2 ? partsOf(text, "<", "/>") : partsOf(text, "=\"", "\"");
    if (parts.empty()) return;
    std::shuffle(parts.begin(), parts.end(), random);
    const auto [begin, size] = parts.front();
    const std::string part = text.substr(begin, size);
    const std::size_t digit = text.find_first_of("0123456789", begin + random() % size);
    const auto nameOf = [&text](std::size_t value) {
        const std::size_t name = text.rfind(' ', value) + 1;
        return text.substr(name, value - name);
    };
    if (kind == 0) text.erase(begin, size);
    if (kind == 1) text.insert(text.find('"', begin) + 1, 1, "abcdefgh"[random() % 8]).insert(begin, part);
    if (kind == 2)
        for (const auto& [from, length] : parts)
            if (from != begin && nameOf(from) == nameOf(begin))
                return static_cast<void>(text.replace(begin, size, text.substr(from, length)));
    if (kind == 3 && digit < begin + size) text[digit] = "0123456789"[random() % 10];
}

// Drops the first element with an error and none inside. Whether there was one.
bool dropError(std::string& text) {
    for (const embedded::Diagnostic& problem : embedded::compilePackage(text).diagnostics) {
        if (problem.severity != embedded::Diagnostic::Severity::Error) continue;
        std::size_t line = 0;
        for (int i = 1; i < problem.place.line; ++i) line = text.find('\n', line) + 1;
        const std::size_t place = line + static_cast<std::size_t>(problem.place.column) - 1;
        for (const auto& [begin, size] : partsOf(text, "<", "/>")) {
            if (place < begin || place >= begin + size) continue;
            text.erase(begin, size);
            return true;
        }
    }
    return false;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t mostSize,
                                               unsigned int seed) {
    std::minstd_rand random(seed);
    const std::string before(data, data + size);
    std::string text = before;
    if (random() % 4 > 0) change(text, random);
    while (random() % 8 > 0 && dropError(text)) {
    }
    if (text == before || text.empty() || text.size() > mostSize)
        return LLVMFuzzerMutate(data, size, mostSize);
    std::copy(text.begin(), text.end(), data);
    return text.size();
}
