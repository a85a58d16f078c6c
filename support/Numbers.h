// Numbers to and from text, the same whatever C and C++ locales the host has set: a decimal point, no
// grouping.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace support {

// Whole texts: a text that is not exactly one number gives false and leaves the value as it is. The rules are
// those of boost::lexical_cast under the classic locale: no blanks; one sign, also before an unsigned number,
// which then wraps ("-1" is the largest); no overflow; floats in decimal, or "inf", "infinity", "nan" and
// "nan(...)" in lower or upper case, and too small ones are 0.
bool convertWhole(std::string_view text, unsigned int& value);
bool convertWhole(std::string_view text, int& value);
bool convertWhole(std::string_view text, float& value);

// The same for Count numbers with "," between them, no more and no fewer. All or nothing.
template <class T, size_t Count>
bool convertWhole(std::string_view text, std::array<T, Count>& values) {
    std::array<T, Count> converted{};
    for (size_t i = 0; i < Count; ++i) {
        const size_t comma = text.find(',');
        if ((comma == std::string_view::npos) != (i + 1 == Count)) return false;
        if (!convertWhole(text.substr(0, comma), converted[i])) return false;
        text.remove_prefix(i + 1 == Count ? 0 : comma + 1);
    }
    values = converted;
    return true;
}

// A number (or an array of numbers) as an attribute's text gives it: zero when the text is null or malformed.
template <class T>
T wholeOrZero(const char* text) {
    T value{};
    if (text) convertWhole(std::string_view(text), value);
    return value;
}

// Prefixes: the number that a text begins with, and 0 when it begins with none; whatever follows is ignored.
// A null text is an empty one. Numbers that are out of range become the nearest value of the type; for floats
// that is infinity.
unsigned int leadingUnsigned(std::string_view text); // digits only: a blank or a sign before them gives 0
unsigned int leadingUnsigned(const char* text);
int leadingInteger(std::string_view text); // as atoi: blanks, then a sign
int leadingInteger(const char* text);
float leadingFloat(std::string_view text); // as atof, but for hexadecimal numbers, which give 0
float leadingFloat(const char* text);

std::string toText(float value); // six significant digits, as streams print by default

// Writes a float with six decimals, as "%f" prints it, without a zero behind it. There must be room for
// longestFixedText characters. Returns the end.
constexpr size_t longestFixedText = 47;
char* writeFixed(char* place, float value);

// Towards zero; out of range becomes the nearest integer, NaN becomes 0.
int truncated(float value);

} // namespace support
