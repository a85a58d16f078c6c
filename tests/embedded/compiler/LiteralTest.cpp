#include "embedded/compiler/Literal.h"
#include "embedded/compiler/Suggestion.h"
#include "embedded/compiler/Uid.h"

#include <gtest/gtest.h>

namespace embedded {
namespace {

std::string read(ValueType type, const char* text) {
    const auto value = parseValue(type, text);
    return value ? formatValue(*value) : "refused";
}

TEST(Literal, Values) {
    const struct {
        ValueType type;
        const char* text;
        const char* value;
    } cases[] = {
        {ValueType::Float, "0.5", "0.5"},
        {ValueType::Float, " -1e-3 ", "-0.001"},
        {ValueType::Float2, "1, 2", "1,2"},
        {ValueType::Float2, "3", "3,3"},
        {ValueType::Float3, "#ff0033", "1,0,0.2"},
        {ValueType::Float4, "#FF003300", "1,0,0.2,0"},
        {ValueType::Float4, "0.1,0.2,0.3", "0.1,0.2,0.3,1"},
        {ValueType::Integer, "-2147483648", "-2147483648"},
        {ValueType::Integer4, "1,2,3", "1,2,3,1"},
    };
    for (const auto& [type, text, value] : cases) EXPECT_EQ(read(type, text), value) << text;

    const std::pair<ValueType, std::vector<const char*>> refused[] = {
        {ValueType::Float, {"1e39", "nan", "inf", "0,5", "0.5f", "", "#ffffff"}},
        {ValueType::Float2, {"1,2,3", "1,"}},
        {ValueType::Float3, {"#ff003380", "#ff00g3"}},
        {ValueType::Float4, {"0.1,0.2"}},
        {ValueType::Integer, {"2147483648", "1.0"}},
    };
    for (const auto& [type, texts] : refused)
        for (const char* const text : texts) EXPECT_EQ(read(type, text), "refused") << text;
}

TEST(Literal, InputExpressions) {
    const auto parsed = [](const char* text) {
        const auto expression = parseInputExpression(text);
        return expression ? expression->input + " " + formatNumber(expression->scale) + " " +
                                formatNumber(expression->offset)
                          : "refused";
    };
    EXPECT_EQ(parsed(" { a } "), "a 1 0");
    EXPECT_EQ(parsed("{a} * 25e-2-1e+1"), "a 0.25 -10");
    EXPECT_EQ(parsed("{a} - 0.5"), "a 1 -0.5");
    for (const char* const text : {"{a", "a} * 2", "{a} * ", "{a} 2", "{a} * 2 + ", "{a} * {b}", "{a} / 2"})
        EXPECT_EQ(parsed(text), "refused") << text;
}

TEST(Suggestion, NearestNames) {
    EXPECT_EQ(suggestion("multpily", {"multiply", "screen"}), "; did you mean \"multiply\"?");
    EXPECT_EQ(suggestion("SCALE", {"scale"}), "; did you mean \"scale\"?");
    EXPECT_EQ(suggestion("zebra", {"red", "blue"}), "; there are red, blue");
}

// Published hashes of FNV-1a; saved documents hold uids, so they may never change.
TEST(Uid, IsTheKnownHash) {
    EXPECT_EQ(deriveUid({""}), 0x811c9dc5u);
    EXPECT_EQ(deriveUid({"foobar"}), 0xbf9cf968u);
    EXPECT_EQ(deriveUid({"a", "b"}), deriveUid({"a\nb"}));
}

} // namespace
} // namespace embedded
