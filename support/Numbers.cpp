#include "support/Numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <sstream>

namespace support {

namespace {

constexpr unsigned int largestInteger = std::numeric_limits<int>::max();

// Cuts a leading sign off; true for a minus.
bool takeSign(std::string_view& text) {
    const char sign = text.empty() ? '\0' : text.front();
    if (sign == '-' || sign == '+') text.remove_prefix(1);
    return sign == '-';
}

int negated(unsigned int magnitude) {
    return magnitude == 0 ? 0 : -static_cast<int>(magnitude - 1) - 1;
}

bool convertDigits(std::string_view text, unsigned int& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size();
}

std::string_view skipBlanks(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || (text.front() >= '\t' && text.front() <= '\r')))
        text.remove_prefix(1);
    return text;
}

std::string inLowerCase(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 'a' - 'A');
    }
    return result;
}

// A stream tells numbers that are too small, which become 0, from those that are too big, which fail.
template <class T>
bool convertExtremeDecimal(std::string_view number, T& value) {
    std::istringstream stream{std::string(number)};
    stream.imbue(std::locale::classic());
    return !!(stream >> value);
}

// The case of each letter is free.
bool convertInfinityOrNan(std::string_view text, float& value) {
    const bool isNegative = takeSign(text);
    const std::string word = inLowerCase(text);
    if (word == "inf" || word == "infinity") {
        value = std::numeric_limits<float>::infinity();
    } else if (word == "nan" || (word.size() >= 5 && word.compare(0, 4, "nan(") == 0 && word.back() == ')')) {
        value = std::numeric_limits<float>::quiet_NaN();
    } else {
        return false;
    }
    if (isNegative) value = std::copysign(value, -1.0f);
    return true;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Saturates.
unsigned int leadingDigits(std::string_view text) {
    constexpr auto most = std::numeric_limits<unsigned int>::max();
    std::uint64_t value = 0;
    for (const char c : text) {
        if (!isDigit(c)) break;
        value = 10 * value + static_cast<std::uint64_t>(c - '0');
        if (value > most) return most;
    }
    return static_cast<unsigned int>(value);
}

size_t countDigits(std::string_view text) {
    size_t count = 0;
    while (count < text.size() && isDigit(text[count])) ++count;
    return count;
}

// The length of the decimal number, without a sign, that a text begins with.
size_t decimalLength(std::string_view text) {
    const size_t whole = countDigits(text);
    size_t length = whole;
    size_t decimals = 0;
    if (length < text.size() && text[length] == '.') {
        decimals = countDigits(text.substr(length + 1));
        length += 1 + decimals;
    }
    if (whole + decimals == 0) return 0;
    if (length < text.size() && (text[length] == 'e' || text[length] == 'E')) {
        std::string_view exponent = text.substr(length + 1);
        takeSign(exponent);
        const size_t digits = countDigits(exponent);
        if (digits > 0) length = text.size() - exponent.size() + digits;
    }
    return length;
}

// The length of the decimal number, without a sign, that a text begins with, and its value: 0 when it is too
// small, and infinity when it is too big. 0 for a text that begins with none.
template <class T>
size_t readDecimal(std::string_view text, T& value) {
    if (text.empty() || !(isDigit(text.front()) || text.front() == '.')) return 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc()) return static_cast<size_t>(end - text.data());
    const size_t length = decimalLength(text);
    if (length > 0 && !convertExtremeDecimal(text.substr(0, length), value))
        value = std::numeric_limits<T>::infinity();
    return length;
}

// The number of millionths nearest to a magnitude below limitOfMillionths; of two as near the even one.
// Exact: the value is mantissa times two to the power of exponent, and a million mantissas fit into 44 bits.
constexpr float limitOfMillionths = 1099511627776.0f; // two to the 40th
constexpr std::uint64_t million = 1000000;

std::uint64_t roundedMillionths(float magnitude) {
    constexpr int mantissaBits = std::numeric_limits<float>::digits - 1;
    std::uint32_t bits = 0;
    static_assert(std::numeric_limits<float>::is_iec559 && sizeof bits == sizeof magnitude, "IEEE floats");
    std::memcpy(&bits, &magnitude, sizeof bits);
    const int biased = static_cast<int>(bits >> mantissaBits);
    const std::uint32_t fraction = bits & ((1u << mantissaBits) - 1);
    const std::uint64_t mantissa = biased == 0 ? fraction : fraction | 1u << mantissaBits;
    const int exponent = std::max(biased, 1) - 127 - mantissaBits;

    const std::uint64_t millions = mantissa * million;
    if (exponent >= 0) return millions << exponent;
    if (exponent <= -64) return 0;
    const int shift = -exponent;
    const std::uint64_t below = millions & ((std::uint64_t{1} << shift) - 1);
    const std::uint64_t half = std::uint64_t{1} << (shift - 1);
    const std::uint64_t whole = millions >> shift;
    return whole + (below > half || (below == half && (whole & 1) != 0) ? 1 : 0);
}

} // namespace

bool convertWhole(std::string_view text, unsigned int& value) {
    const bool isNegative = takeSign(text);
    unsigned int magnitude = 0;
    if (!convertDigits(text, magnitude)) return false;
    value = isNegative ? 0u - magnitude : magnitude;
    return true;
}

bool convertWhole(std::string_view text, int& value) {
    const bool isNegative = takeSign(text);
    unsigned int magnitude = 0;
    if (!convertDigits(text, magnitude) || magnitude > largestInteger + (isNegative ? 1u : 0u)) return false;
    value = isNegative ? negated(magnitude) : static_cast<int>(magnitude);
    return true;
}

bool convertWhole(std::string_view text, float& value) {
    std::string_view magnitudeText = text;
    const bool isNegative = takeSign(magnitudeText);
    float magnitude = 0;
    const size_t length = readDecimal(magnitudeText, magnitude);
    if (length == 0) return convertInfinityOrNan(text, value);
    if (length != magnitudeText.size() || std::isinf(magnitude)) return false;
    value = isNegative ? -magnitude : magnitude;
    return true;
}

unsigned int leadingUnsigned(std::string_view text) {
    return leadingDigits(text);
}

unsigned int leadingUnsigned(const char* text) {
    return leadingUnsigned(std::string_view(text ? text : ""));
}

int leadingInteger(std::string_view text) {
    std::string_view rest = skipBlanks(text);
    const bool isNegative = takeSign(rest);
    const unsigned int magnitude = leadingDigits(rest);
    return isNegative ? negated(std::min(magnitude, largestInteger + 1))
                      : static_cast<int>(std::min(magnitude, largestInteger));
}

int leadingInteger(const char* text) {
    return leadingInteger(std::string_view(text ? text : ""));
}

float leadingFloat(std::string_view text) {
    std::string_view rest = skipBlanks(text);
    const bool isNegative = takeSign(rest);
    double magnitude = 0;
    if (readDecimal(rest, magnitude) == 0) {
        const std::string word = inLowerCase(rest.substr(0, 3));
        if (word != "inf" && word != "nan") return 0; // without the sign
        magnitude = word == "inf" ? HUGE_VAL : std::numeric_limits<double>::quiet_NaN();
    }
    return static_cast<float>(std::copysign(magnitude, isNegative ? -1.0 : 1.0));
}

float leadingFloat(const char* text) {
    return leadingFloat(std::string_view(text ? text : ""));
}

std::string toText(float value) {
    std::array<char, 64> characters;
    const auto [end, error] = std::to_chars(characters.data(), characters.data() + characters.size(), value,
                                            std::chars_format::general, 6);
    return std::string(characters.data(), end);
}

// Like to_chars, but faster where the value is of an ordinary size.
char* writeFixed(char* place, float value) {
    char* const end = place + longestFixedText;
    const float magnitude = std::abs(value);
    if (!(magnitude < limitOfMillionths))
        return std::to_chars(place, end, value, std::chars_format::fixed, 6).ptr;
    if (std::signbit(value)) *place++ = '-';
    const std::uint64_t millionths = roundedMillionths(magnitude);
    place = std::to_chars(place, end, millionths / million).ptr;
    *place++ = '.';
    auto decimals = static_cast<std::uint32_t>(millionths % million);
    for (int k = 5; k >= 0; --k, decimals /= 10) place[k] = static_cast<char>('0' + decimals % 10);
    return place + 6;
}

int truncated(float value) {
    constexpr float limit = 2147483648.0f; // two to the 31st
    if (std::isnan(value)) return 0;
    if (value >= limit) return std::numeric_limits<int>::max();
    if (value < -limit) return std::numeric_limits<int>::min();
    return static_cast<int>(value);
}

} // namespace support
