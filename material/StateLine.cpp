#include "material/StateLine.h"

#include "support/PlainNumbers.h"

#include <array>
#include <charconv>
#include <cstring>

namespace kvSubstance {

namespace {

constexpr size_t longestInt = 11; // characters; no uid has more

// A type without a component count (16, 32) is one number: on purpose, as it is when it is synchronised.
int numbersOf(int count) {
    return count >= 2 && count <= 4 ? count : 1;
}

// The slots as one type, whichever they were written as.
template <class T>
std::array<T, 4> slotsOf(const SubstanceInput::IntOrFloat& values) {
    std::array<T, 4> slots;
    static_assert(sizeof slots == sizeof values, "four slots");
    std::memcpy(slots.data(), &values, sizeof slots);
    return slots;
}

char* writeNumber(char* place, int number) {
    return std::to_chars(place, place + longestInt, number).ptr;
}
char* writeNumber(char* place, float number) {
    return support::writeFixed(place, number);
}

template <class T>
char* writeNumbers(char* place, const SubstanceInput::IntOrFloat& value, int count) {
    const std::array<T, 4> slots = slotsOf<T>(value);
    for (int k = 0; k < count; ++k) {
        *place++ = ' ';
        place = writeNumber(place, slots[static_cast<size_t>(k)]);
    }
    return place;
}

// The numbers and the end of a line. Returns where the next one begins; null for anything else.
template <class T>
const char* readPlainNumbers(const char* place, const char* end, int count, T* numbers) {
    for (int k = 0; k < count; ++k) {
        if (place == end || *place != ' ') return nullptr;
        place = support::readPlain(place + 1, end, numbers[k]);
        if (!place) return nullptr;
    }
    if (place == end) return end;
    return *place == '\n' ? place + 1 : nullptr;
}

// A line as writeStateLine writes it, with numbers of an ordinary size. Returns where the next one begins;
// null for any other.
const char* readPlainLine(const char* text, const char* end, StateLine& line) {
    const char* const place = support::readPlain(text, end, line.uid);
    if (!place || end - place < 4 || place[0] != 'd' || place[1] != ' ') return nullptr;
    line.kind = place[2];
    line.count = place[3] - '0';
    if (line.count < 1 || line.count > 4) return nullptr;
    if (line.kind == 'f') return readPlainNumbers(place + 4, end, line.count, line.numbers.f);
    if (line.kind == 'i') return readPlainNumbers(place + 4, end, line.count, line.numbers.i);
    return nullptr;
}

// Pieces that are missing are empty.
StateLine parse(std::string_view text) {
    StateLine line;
    line.uid = support::leadingUnsigned(takePiece(text, ' '));
    const std::string_view format = takePiece(text, ' ');
    if (!format.empty()) line.kind = format[0];
    if (format.size() > 1) line.count = numbersOf(format[1] - '0');
    for (int k = 0; k < line.count; ++k) {
        if (line.kind == 'i') line.numbers.i[k] = support::leadingInteger(takePiece(text, ' '));
        if (line.kind == 'f') line.numbers.f[k] = support::leadingFloat(takePiece(text, ' '));
    }
    return line;
}

} // namespace

// The "d" behind the uid belongs to the format: saved documents have it.
char* writeStateLine(char* place, unsigned int uid, Type type, const SubstanceInput::IntOrFloat& value) {
    const bool holdsInts = (type & 0x20) != 0;
    if (!holdsInts && (type & 0x10) == 0) return place;
    const int count = numbersOf(type & 7);
    place = std::to_chars(place, place + longestInt, uid).ptr;
    *place++ = 'd';
    *place++ = ' ';
    *place++ = holdsInts ? 'i' : 'f';
    *place++ = static_cast<char>('0' + count);
    place = holdsInts ? writeNumbers<int>(place, value, count) : writeNumbers<float>(place, value, count);
    *place++ = '\n';
    return place;
}

StateLine takeStateLine(std::string_view& text) {
    StateLine line;
    if (const char* const next = readPlainLine(text.data(), text.data() + text.size(), line))
        text.remove_prefix(static_cast<size_t>(next - text.data()));
    else
        line = parse(takePiece(text, '\n'));
    return line;
}

std::string_view takePiece(std::string_view& text, char separator) {
    const std::string_view piece = text.substr(0, text.find(separator));
    text.remove_prefix(piece.size() < text.size() ? piece.size() + 1 : piece.size());
    return piece;
}

} // namespace kvSubstance
