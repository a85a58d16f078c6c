#include "embedded/compiler/Literal.h"
#include "embedded/compiler/Uid.h"

#include <gtest/gtest.h>

namespace embedded {
namespace {

std::string read(ValueType type, const char* text) {
    const auto value = parseValue(type, text);
    return value ? formatValue(*value) : "refused";
}

TEST(Literal, Values) {
    EXPECT_EQ(read(ValueType::Float, " -1e-3 "), "-0.001");
    EXPECT_EQ(read(ValueType::Float2, "3"), "3,3");
    EXPECT_EQ(read(ValueType::Float4, "#FF003300"), "1,0,0.2,0");
    EXPECT_EQ(read(ValueType::Float4, "0.1, 0.2,0.3"), "0.1,0.2,0.3,1");
    EXPECT_EQ(read(ValueType::Integer, "-2147483648"), "-2147483648");
    const std::pair<ValueType, std::vector<const char*>> refused[] = {
        {ValueType::Float, {"1e39", "nan", "inf", "0,5", "0.5f", "", "#ffffff"}},
        {ValueType::Float2, {"1,2,3", "1,"}},
        {ValueType::Float3, {"#ff003380", "#ff00g3"}},
        {ValueType::Float4, {"0.1,0.2"}},
        {ValueType::Integer4, {"1,2,3"}},
        {ValueType::Integer, {"2147483648", "1.0"}},
    };
    for (const auto& [type, texts] : refused)
        for (const char* const text : texts) EXPECT_EQ(read(type, text), "refused") << text;
}

// Published hashes of FNV-1a; saved documents hold uids, so they may never change.
TEST(Uid, IsTheKnownHash) {
    EXPECT_EQ(deriveUid({""}), 0x811c9dc5u);
    EXPECT_EQ(deriveUid({"foobar"}), 0xbf9cf968u);
    EXPECT_EQ(deriveUid({"a", "b"}), deriveUid({"a\nb"}));
}

} // namespace
} // namespace embedded
