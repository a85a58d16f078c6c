#include "support/PlainNumbers.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace support {

namespace {

// What so many digits amount to is below two to the 53rd: a double holds it exactly.
constexpr int mostDigits = 15;

constexpr std::array<double, mostDigits + 1> powersOfTen = {1,   1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                            1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// Reads the digits that a text begins with behind those of a number, and returns their end. Runs of more than
// mostDigits leave the number as it may be.
const char* readDigits(const char* text, const char* end, std::uint64_t& number) {
    const char* place = text;
    for (; place != end; ++place) {
        const unsigned int digit = static_cast<unsigned char>(*place) - static_cast<unsigned int>('0');
        if (digit > 9) break;
        number = number * 10 + digit;
    }
    return place;
}

bool isUsual(std::ptrdiff_t digits) {
    return digits > 0 && digits <= mostDigits;
}

bool startsWith(char c, const char* text, const char* end) {
    return text != end && *text == c;
}

} // namespace

const char* readPlain(const char* text, const char* end, unsigned int& value) {
    std::uint64_t number = 0;
    const char* const behind = readDigits(text, end, number);
    if (!isUsual(behind - text) || number > std::numeric_limits<unsigned int>::max()) return nullptr;
    value = static_cast<unsigned int>(number);
    return behind;
}

const char* readPlain(const char* text, const char* end, int& value) {
    const bool isNegative = startsWith('-', text, end);
    const char* const digits = text + (isNegative ? 1 : 0);
    std::uint64_t magnitude = 0;
    const char* const behind = readDigits(digits, end, magnitude);
    if (!isUsual(behind - digits) || magnitude > std::numeric_limits<int>::max()) return nullptr;
    value = isNegative ? -static_cast<int>(magnitude) : static_cast<int>(magnitude);
    return behind;
}

// The digits as a whole number and the power of ten are exact, so that their quotient is the nearest double,
// which leadingFloat, too, makes a float of (W. D. Clinger, "How to read floating point numbers accurately",
// 1990).
const char* readPlain(const char* text, const char* end, float& value) {
    const bool isNegative = startsWith('-', text, end);
    const char* const whole = text + (isNegative ? 1 : 0);
    std::uint64_t digits = 0;
    const char* behind = readDigits(whole, end, digits);
    std::ptrdiff_t count = behind - whole;
    std::ptrdiff_t decimals = 0;
    if (startsWith('.', behind, end)) {
        const char* const fraction = behind + 1;
        behind = readDigits(fraction, end, digits);
        decimals = behind - fraction;
        count += decimals;
    }
    if (!isUsual(count)) return nullptr;
    const double magnitude = static_cast<double>(digits) / powersOfTen[static_cast<size_t>(decimals)];
    value = static_cast<float>(isNegative ? -magnitude : magnitude);
    return behind;
}

} // namespace support
