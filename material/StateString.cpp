// A material's values as text: Substance::getStateString and applyStateString.
#include "bridge/InputInstances.h"
#include "bridge/Synchronisation.h"
#include "material/Substance.h"
#include "support/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <string>
#include <string_view>
#include <typeinfo>

namespace kvSubstance {

namespace {

constexpr size_t LongestLine = 16 + 4 * (1 + support::longestFixedText); // uid, kind, line feed; the values
constexpr size_t UsualLine = 32;

// How many numbers a line gives for an input of the type.
size_t numbersIn(Type type) {
    const int announced = type & 7;
    return announced >= 2 && announced <= 4 ? static_cast<size_t>(announced) : 1;
}

// What the line of an input is made of.
struct LineContent {
    unsigned int uid;
    Type type;
    SubstanceInput::IntOrFloat value;
};

template <class T>
std::array<T, 4> slotsOf(const SubstanceInput::IntOrFloat& value) {
    std::array<T, 4> slots;
    static_assert(sizeof slots == sizeof value, "four slots");
    std::memcpy(slots.data(), &value, sizeof slots);
    return slots;
}

char* writeNumber(char* place, int number) {
    return std::to_chars(place, place + LongestLine, number).ptr;
}
char* writeNumber(char* place, float number) {
    return support::writeFixed(place, number);
}

template <class T>
char* writeNumbers(char* place, const LineContent& content) {
    const std::array<T, 4> slots = slotsOf<T>(content.value);
    for (size_t k = 0; k < numbersIn(content.type); ++k) {
        *place++ = ' ';
        place = writeNumber(place, slots[k]);
    }
    return place;
}

// The "d" behind the uid belongs to the format: saved documents have it.
void appendLine(std::string& state, const LineContent& content) {
    const bool holdsInts = (content.type & 0x20) != 0;
    if (!holdsInts && !(content.type & 0x10)) return;
    std::array<char, LongestLine> line;
    char* place = std::to_chars(line.data(), line.data() + line.size(), content.uid).ptr;
    *place++ = 'd';
    *place++ = ' ';
    *place++ = holdsInts ? 'i' : 'f';
    *place++ = static_cast<char>('0' + numbersIn(content.type));
    place = holdsInts ? writeNumbers<int>(place, content) : writeNumbers<float>(place, content);
    *place++ = '\n';
    state.append(line.data(), static_cast<size_t>(place - line.data()));
}

std::string_view viewOf(const kvString::CString& text) {
    return {text.asChar(), text.length()};
}

// Cuts the piece before the first separator off, with the separator; without one, all of it.
std::string_view takePiece(std::string_view& text, char separator) {
    const std::string_view piece = text.substr(0, text.find(separator));
    text.remove_prefix(piece.size() < text.size() ? piece.size() + 1 : piece.size());
    return piece;
}

float takeFloat(std::string_view& line) {
    float number = 0;
    const size_t length = support::readPlainDecimal(line, ' ', number);
    if (length == 0) return support::leadingFloat(takePiece(line, ' '));
    line.remove_prefix(std::min(length + 1, line.size()));
    return number;
}

int takeInteger(std::string_view& line) {
    return support::leadingInteger(takePiece(line, ' '));
}

// As many numbers as the setter of that count takes, which is one for a count that none has. Pieces that are
// missing are empty.
template <class T>
std::array<T, 4> takeNumbers(std::string_view line, int count, T (*take)(std::string_view& line)) {
    std::array<T, 4> numbers{};
    const int wanted = count >= 2 && count <= 4 ? count : 1;
    for (int k = 0; k < wanted; ++k) numbers[static_cast<size_t>(k)] = take(line);
    return numbers;
}

void applyInts(SubstanceInput& input, int count, std::string_view line) {
    const std::array<int, 4> n = takeNumbers(line, count, takeInteger);
    switch (count) {
    case 2:
        return input.setValue2I(n[0], n[1]);
    case 3:
        return input.setValue3I(n[0], n[1], n[2]);
    case 4:
        return input.setValue4I(n[0], n[1], n[2], n[3]);
    default:
        return input.setValueI(n[0], 0);
    }
}

void applyFloats(SubstanceInput& input, int count, std::string_view line) {
    const std::array<float, 4> n = takeNumbers(line, count, takeFloat);
    switch (count) {
    case 2:
        return input.setValue2F(n[0], n[1]);
    case 3:
        return input.setValue3F(n[0], n[1], n[2]);
    case 4:
        return input.setValue4F(n[0], n[1], n[2], n[3]);
    default:
        return input.setValueF(n[0], 0);
    }
}

// The line's kind chooses the setter, whatever the input's type: on purpose, a document means what it says.
void applyLine(const kv::Reference<Substance>& material, std::string_view line) {
    const unsigned int uid = support::leadingUnsigned(takePiece(line, ' '));
    SubstanceEntity* const entity = material->getEntity(uid);
    if (!entity || typeid(*entity) != typeid(SubstanceInput)) return;
    const kv::Reference<SubstanceInput> input(static_cast<SubstanceInput*>(entity));
    const std::string_view format = takePiece(line, ' ');
    const char kind = format.empty() ? '\0' : format[0];
    const int count = format.size() > 1 ? format[1] - '0' : 0;
    if (kind == 'i') applyInts(*input, count, line);
    if (kind == 'f') applyFloats(*input, count, line);
    syncValueFromSubstanceInputToInputInstanceBase(input.get(), findInputInstance(*material, *input));
}

} // namespace

// The values of a few inputs are gathered before their lines are written: what is fetched from memory for one
// input then overlaps with what is fetched for the next, which in large materials takes longer than the
// writing.
kvString::CString Substance::getStateString() const {
    std::string state;
    state.reserve(packageURL.length() + 1 + UsualLine * static_cast<size_t>(inputs.count()));
    state += packageURL.asChar();
    state += '\n';
    std::array<LineContent, 16> contents;
    for (auto item = inputs.begin(); item != inputs.end();) {
        size_t gathered = 0;
        for (; gathered < contents.size() && item != inputs.end(); ++item) {
            const SubstanceInput& input = *item->value;
            contents[gathered++] = {input.getUID(), input.type, input.value};
        }
        for (size_t k = 0; k < gathered; ++k) appendLine(state, contents[k]);
    }
    return kvString::CString(state.data(), state.size());
}

// Pieces are cut as kvUtil::split cuts them that keeps empty ones and trims none, but without a copy of each.
// The whole text is copied, because a listener may change or drop the string that it came in.
void Substance::applyStateString(const kvString::CString& state) {
    const kv::Reference<Substance> keep(this);
    const std::string copy(viewOf(state));
    std::string_view rest = copy;
    if (rest.empty() || takePiece(rest, '\n') != viewOf(packageURL)) return;
    while (!rest.empty()) {
        const std::string_view line = takePiece(rest, '\n');
        if (!line.empty()) applyLine(keep, line);
    }
}

} // namespace kvSubstance
