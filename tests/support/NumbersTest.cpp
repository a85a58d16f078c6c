// The reference is computed under the classic locale, the result under one that writes 1.234,5.
#include "support/Numbers.h"
#include "support/PlainNumbers.h"

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct CommaAndGroups : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

template <class Function>
auto inCommaLocale(const Function& function) {
    std::locale::global(std::locale(std::locale::classic(), new CommaAndGroups));
    std::setlocale(LC_ALL, "de_DE.UTF-8"); // where there is one
    const auto result = function();
    std::locale::global(std::locale::classic());
    std::setlocale(LC_ALL, "C");
    return result;
}

// Every combination of a sign, a body and a tail.
std::vector<std::string> texts() {
    const char* const bodies =
        "0 007 000000000000000000000042 2147483647 2147483648 2147483649 4294967295 4294967296 "
        "99999999999999999999999 1.234 1,234 1.234.567 .5 5. . 1e3 1e 1e+ 1e- 1E+05 1e5.5 e5 .e5 "
        "0x10 3.4028235e38 3.5e38 1e400 1e99999999999 0e99999 1e-40 1e-400 0.1234567 16777217 "
        "inf iNf INFINITY infinit nan NaN nan() nan(12) nan( nan) nanx a \xFF";
    std::vector<std::string> all;
    for (const std::string sign : {"", "+", "-", "--", "+-", " ", "\t", "- "}) {
        for (const std::string tail : {"", " ", "\n", "d f2", ",7"}) {
            all.push_back(sign + tail);
            std::istringstream words(bodies);
            for (std::string body; words >> body;) all.push_back(sign + body + tail);
        }
    }
    return all;
}

// Of all magnitudes, subnormal ones included.
std::vector<float> someFloats() {
    std::vector<float> values;
    std::uint32_t bits = 1;
    for (int i = 0; i < 3000; ++i) {
        bits = bits * 1664525u + 1013904223u;
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (std::isfinite(value)) values.push_back(value);
    }
    return values;
}

// All bits of a number, as text.
template <class T>
std::string exact(T value) {
    std::ostringstream text;
    text << std::hexfloat << value;
    return text.str();
}

// The type's lexical conversion, with 77 where that fails.
template <class T>
void expectAsLexicalCast(const std::string& text) {
    T expected, value = 77;
    if (!boost::conversion::try_lexical_convert(text, expected)) expected = 77;
    EXPECT_EQ(inCommaLocale([&] { return support::convertWhole(text, value); }), expected != 77) << text;
    EXPECT_EQ(exact(value), exact(expected)) << text;
}

// Whether a text begins with a plain number. If so, what is read is what the general conversion makes of the
// same characters, whatever is behind them.
template <class T>
bool readsPlainly(const std::string& text, T (*convert)(std::string_view)) {
    T value = 77;
    const char* const end = support::readPlain(text.data(), text.data() + text.size(), value);
    const std::string number(text.data(), end ? end : text.data());
    EXPECT_EQ(exact(value), exact(end ? convert(number) : T{77})) << text;
    EXPECT_TRUE(!end || *end < '0' || *end > '9') << text;
    return end != nullptr;
}

TEST(Numbers, TextsConvertAsLexicalCastAndTheCLibraryDo) {
    for (const std::string& text : texts()) {
        expectAsLexicalCast<unsigned int>(text);
        expectAsLexicalCast<int>(text);
        expectAsLexicalCast<float>(text);
        if (text.find("0x") == std::string::npos) { // on purpose not as the C library
            char* end = nullptr;
            const double number = std::strtod(text.c_str(), &end);
            // Some libraries make -0 of a lone sign.
            const float expected = end == text.c_str() ? 0 : static_cast<float>(number);
            const float value = inCommaLocale([&] { return support::leadingFloat(text.c_str()); });
            EXPECT_EQ(exact(value), exact(expected)) << text;
        }
        readsPlainly<float>(text, support::leadingFloat);
        readsPlainly<int>(text, support::leadingInteger);
        readsPlainly<unsigned int>(text, support::leadingUnsigned);
        const long long wide = std::strtoll(text.c_str(), nullptr, 10); // saturates itself
        EXPECT_EQ(support::leadingInteger(text.c_str()), std::clamp<long long>(wide, INT_MIN, INT_MAX))
            << text;
        const bool hasDigit = text[0] >= '0' && text[0] <= '9';
        const long long natural = hasDigit ? std::min<long long>(wide, UINT_MAX) : 0;
        EXPECT_EQ(support::leadingUnsigned(text.c_str()), natural) << text;
    }
    for (const float value : someFloats()) {
        for (const char* format : {"%f", "%.9g", "%.60e", "%e1"}) { // the last is often out of range
            std::array<char, 100> text;
            std::snprintf(text.data(), text.size(), format, static_cast<double>(value));
            expectAsLexicalCast<float>(text.data());
            EXPECT_EQ(exact(support::leadingFloat(text.data())),
                      exact(static_cast<float>(std::strtod(text.data(), nullptr))))
                << text.data();
            const std::string_view view = text.data();
            const auto digits =
                std::count_if(view.begin(), view.end(), [](char c) { return std::isdigit(c); });
            EXPECT_EQ(readsPlainly<float>(text.data(), support::leadingFloat), digits <= 15) << view;
        }
    }
    EXPECT_EQ(support::wholeOrZero<unsigned int>(nullptr), 0u);
    EXPECT_EQ(support::wholeOrZero<float>("1,5"), 0.0f);
    EXPECT_EQ(support::leadingFloat(nullptr), 0.0f);
    EXPECT_EQ(support::leadingFloat("0x10"), 0.0f);
}

TEST(Numbers, ComponentsAreAllOrNothing) {
    using Triple = std::array<int, 3>;
    EXPECT_EQ((support::wholeOrZero<Triple>("1,-2,+3")), (Triple{1, -2, 3}));
    for (const char* text : {"1,2", "1,2,", "1,2,3,", "1,2,3,4", "1,,3", "", ",,", "1, 2,3", "1,2.0,3"}) {
        Triple values{7, 7, 7};
        EXPECT_FALSE(support::convertWhole(text, values)) << text;
        EXPECT_EQ(values, (Triple{7, 7, 7})) << text;
    }
}

TEST(Numbers, FloatsPrintAsTheCLibraryDoes) {
    std::vector<float> values = {-0.0f, 0.1234567f, 123456.0f, 999999.5f, 1e-5f, 1e-45f, FLT_MAX, HUGE_VALF};
    values.insert(values.end(),
                  {1099511627776.0f, 1099511562240.0f, -FLT_MIN}); // where the ways to print meet
    for (const float value : someFloats()) values.push_back(value);
    for (int odd = -1001; odd < 1000; odd += 2)
        values.push_back(static_cast<float>(odd) / 128); // seven decimals
    for (const float value : values) {
        std::array<char, 100> general, fixed;
        std::snprintf(general.data(), general.size(), "%g", static_cast<double>(value));
        std::snprintf(fixed.data(), fixed.size(), "%f", static_cast<double>(value));
        EXPECT_EQ(inCommaLocale([value] { return support::toText(value); }), general.data());
        std::array<char, support::longestFixedText> text;
        char* const end = inCommaLocale([&] { return support::writeFixed(text.data(), value); });
        EXPECT_EQ(std::string(text.data(), end), fixed.data());
    }
}

TEST(Numbers, FloatsTruncateAndSaturate) {
    EXPECT_EQ(support::truncated(-1.9f), -1);
    EXPECT_EQ(support::truncated(2147483648.0f), INT_MAX);
    EXPECT_EQ(support::truncated(-2147483904.0f), INT_MIN);
    EXPECT_EQ(support::truncated(NAN), 0);
}

} // namespace
