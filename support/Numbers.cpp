#include "support/Numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
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

unsigned int leadingDigits(std::string_view text) {
    unsigned int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc::result_out_of_range ? std::numeric_limits<unsigned int>::max() : value;
}

std::string_view skipBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    return text;
}

std::string inLowerCase(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 'a' - 'A');
    }
    return result;
}

// A stream is used, and not from_chars, because it tells numbers that are too small, which become 0, from
// those that are too big, which fail.
template <class T>
bool convertDecimal(std::string_view number, T& value) {
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

size_t countDigits(std::string_view text) {
    return std::min(text.find_first_not_of("0123456789"), text.size());
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

std::string printed(float value, std::chars_format format) {
    std::array<char, 64> characters;
    const auto [end, error] =
        std::to_chars(characters.data(), characters.data() + characters.size(), value, format, 6);
    return std::string(characters.data(), end);
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
    if (convertInfinityOrNan(text, value)) return true;
    std::string_view unsignedText = text;
    takeSign(unsignedText);
    if (unsignedText.empty() || decimalLength(unsignedText) != unsignedText.size()) return false;
    float converted = 0;
    if (!convertDecimal(text, converted)) return false;
    value = converted;
    return true;
}

unsigned int leadingUnsigned(const char* text) {
    return leadingDigits(text ? text : "");
}

int leadingInteger(const char* text) {
    std::string_view rest = skipBlanks(text ? text : "");
    const bool isNegative = takeSign(rest);
    const unsigned int magnitude = leadingDigits(rest);
    return isNegative ? negated(std::min(magnitude, largestInteger + 1))
                      : static_cast<int>(std::min(magnitude, largestInteger));
}

float leadingFloat(const char* text) {
    std::string_view rest = skipBlanks(text ? text : "");
    const bool isNegative = takeSign(rest);
    double magnitude = 0;
    if (const size_t length = decimalLength(rest)) {
        if (!convertDecimal(rest.substr(0, length), magnitude)) magnitude = HUGE_VAL;
    } else if (inLowerCase(rest.substr(0, 3)) == "inf") {
        magnitude = HUGE_VAL;
    } else if (inLowerCase(rest.substr(0, 3)) == "nan") {
        magnitude = std::numeric_limits<double>::quiet_NaN();
    } else {
        return 0; // without the sign
    }
    return static_cast<float>(std::copysign(magnitude, isNegative ? -1.0 : 1.0));
}

std::string toText(float value) {
    return printed(value, std::chars_format::general);
}

std::string toFixedText(float value) {
    return printed(value, std::chars_format::fixed);
}

int truncated(float value) {
    constexpr float limit = 2147483648.0f; // two to the 31st
    if (std::isnan(value)) return 0;
    if (value >= limit) return std::numeric_limits<int>::max();
    if (value < -limit) return std::numeric_limits<int>::min();
    return static_cast<int>(value);
}

} // namespace support
