#include "support/Numbers.h"

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

struct CommaAndGroups : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

// Each test runs under the classic locale and again under one that writes 1.234,5.
class Numbers : public testing::TestWithParam<bool> {
protected:
    Numbers() {
        if (!GetParam()) return;
        std::locale::global(std::locale(std::locale::classic(), new CommaAndGroups));
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "German_Germany.1252"}) { // whichever there is
            if (std::setlocale(LC_ALL, name)) break;
        }
    }
    ~Numbers() override {
        std::locale::global(std::locale::classic());
        std::setlocale(LC_ALL, "C");
    }

    // What a conversion gives, computed under the classic locale.
    template <class Function>
    auto classically(const Function& function) const {
        const std::locale present = std::locale::global(std::locale::classic());
        const std::string cLocale = std::setlocale(LC_ALL, nullptr);
        std::setlocale(LC_ALL, "C");
        const auto result = function();
        std::locale::global(present);
        std::setlocale(LC_ALL, cLocale.c_str());
        return result;
    }
};

INSTANTIATE_TEST_SUITE_P(Locales, Numbers, testing::Bool(),
                         [](const auto& suite) { return suite.param ? "Comma" : "Classic"; });

// Every combination of a sign, a body and a tail.
std::vector<std::string> texts() {
    const char* const bodies =
        "0 5 007 000000000000000000000042 2147483647 2147483648 2147483649 4294967295 4294967296 "
        "99999999999999999999999 1.234 1,234 1.234.567 1.5 1,5 .5 5. . 1e3 1e 1e+ 1e- 1E+05 1e5.5 e5 .e5 "
        "0x10 0xg "
        "3.4028235e38 3.5e38 1e39 1e400 1e99999999999 0e99999 1e-40 1e-46 1e-400 1e-99999999999 0.1234567 "
        "16777217 "
        "340282346638528859811704183484516925440 inf INF iNf infinity INFINITY infinit infinityx nan NaN "
        "nan() "
        "nan(12) nan( nan) nanx 1.#INF a \xFF";
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

template <class T>
bool same(T a, T b) {
    return a == b;
}
bool same(float a, float b) {
    return (std::isnan(a) && std::isnan(b) && std::signbit(a) == std::signbit(b)) ||
           std::memcmp(&a, &b, sizeof a) == 0;
}

// The type's lexical conversion, with a mark of its own where that fails.
template <class T>
void expectAsLexicalCast(const std::string& text, T value, bool isConverted, T mark) {
    T expected = mark;
    const bool isExpected = boost::conversion::try_lexical_convert(text, expected);
    EXPECT_EQ(isConverted, isExpected) << "'" << text << "'";
    const T wanted = isExpected ? expected : mark;
    EXPECT_TRUE(same(value, wanted)) << "'" << text << "' " << value << " instead of " << wanted;
}

TEST_P(Numbers, WholeTextsConvertAsLexicalCastDoes) {
    for (const std::string& text : texts()) {
        unsigned int natural = 77;
        int integer = 77;
        float real = 77;
        const bool isNatural = support::convertWhole(text, natural);
        const bool isInteger = support::convertWhole(text, integer);
        const bool isReal = support::convertWhole(text, real);
        classically([&] {
            expectAsLexicalCast(text, natural, isNatural, 77u);
            expectAsLexicalCast(text, integer, isInteger, 77);
            expectAsLexicalCast(text, real, isReal, 77.0f);
            return 0;
        });
    }
    EXPECT_EQ(support::wholeOrZero<unsigned int>(nullptr), 0u);
    EXPECT_EQ(support::wholeOrZero<unsigned int>("-1"), UINT_MAX);
    EXPECT_EQ(support::wholeOrZero<float>("1,5"), 0.0f);
}

TEST_P(Numbers, PrefixesReadAsTheCLibraryDoesAndSaturate) {
    for (const std::string& text : texts()) {
        if (text.find("0x") == std::string::npos) { // on purpose not as the C library
            const float expected = classically([&] { return static_cast<float>(std::atof(text.c_str())); });
            EXPECT_TRUE(same(support::leadingFloat(text.c_str()), expected)) << "'" << text << "'";
        }
        const long long wide = std::strtoll(text.c_str(), nullptr, 10); // saturates itself
        EXPECT_EQ(support::leadingInteger(text.c_str()),
                  static_cast<int>(std::min<long long>(std::max<long long>(wide, INT_MIN), INT_MAX)))
            << "'" << text << "'";
        const bool hasDigit = text[0] >= '0' && text[0] <= '9';
        EXPECT_EQ(support::leadingUnsigned(text.c_str()),
                  hasDigit ? static_cast<unsigned int>(std::min<long long>(wide, UINT_MAX)) : 0u)
            << "'" << text << "'";
    }
    EXPECT_EQ(support::leadingFloat(nullptr), 0.0f);
    EXPECT_EQ(support::leadingFloat("0x10"), 0.0f);
    EXPECT_EQ(support::leadingUnsigned("9d i1 3"), 9u);
}

TEST_P(Numbers, ComponentsAreAllOrNothing) {
    const std::array<int, 3> mark{7, 7, 7};
    const struct {
        const char* text;
        std::array<int, 3> expected;
    } cases[] = {{"1,-2,+3", {1, -2, 3}}, {"1,2", mark},    {"1,2,", mark},    {"1,2,3,", mark},
                 {"1,2,3,4", mark},       {"1,,3", mark},   {"", mark},        {",,", mark},
                 {"1, 2,3", mark},        {"1,2,3 ", mark}, {"1,2.0,3", mark}, {"1;2;3", mark}};
    for (const auto& c : cases) {
        std::array<int, 3> values = mark;
        EXPECT_EQ(support::convertWhole(c.text, values), c.expected != mark) << c.text;
        EXPECT_EQ(values, c.expected) << c.text;
    }
    using Pair = std::array<float, 2>;
    EXPECT_EQ((support::wholeOrZero<Pair>("0.5,1e2")), (Pair{0.5f, 100}));
    EXPECT_EQ((support::wholeOrZero<Pair>("0.5,x")), (Pair{0, 0}));
}

TEST_P(Numbers, FloatsPrintAsTheCLibraryDoes) {
    for (const float value :
         {0.0f, -0.0f, 0.5f, 0.1234567f, 123456.0f, 1234567.0f, 1e-5f, 1e-45f, 1e10f, -2.5f, 999999.5f,
          std::numeric_limits<float>::max(), std::numeric_limits<float>::lowest(),
          std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()}) {
        const auto printed = [value](const char* format) {
            std::array<char, 100> buffer;
            std::snprintf(buffer.data(), buffer.size(), format, static_cast<double>(value));
            return std::string(buffer.data());
        };
        EXPECT_EQ(support::toText(value), classically([&] { return printed("%g"); }));
        EXPECT_EQ(support::toFixedText(value), classically([&] { return printed("%f"); }));
    }
    EXPECT_EQ(support::toText(std::nanf("")), "nan");
}

TEST_P(Numbers, FloatsTruncateAndSaturate) {
    const float infinite = std::numeric_limits<float>::infinity();
    const std::pair<float, int> cases[] = {{1.9f, 1},
                                           {-1.9f, -1},
                                           {2147483520.0f, 2147483520},
                                           {2147483648.0f, INT_MAX},
                                           {-2147483648.0f, INT_MIN},
                                           {-2147483904.0f, INT_MIN},
                                           {infinite, INT_MAX},
                                           {-infinite, INT_MIN},
                                           {std::nanf(""), 0}};
    for (const auto& c : cases) EXPECT_EQ(support::truncated(c.first), c.second) << c.first;
}

} // namespace
