// Strings and hash tables.
#include "platform/base.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using kvString::CString;

TEST(CString, ComparesByUnsignedBytesAndFormatsItself) {
    EXPECT_EQ(CString("DiffUSE").compareNoCase("diffuse"), 0);
    EXPECT_LT(CString("ab").compareNoCase("ABC"), 0);
    EXPECT_GT(CString("\xC4").compareNoCase("z"), 0);
    EXPECT_NE(CString("\xC4").compareNoCase("\xE4"), 0); // ASCII letters only
    EXPECT_TRUE(CString("z") < CString("\x80"));
    EXPECT_FALSE(CString("a", 1) == CString("a\0b", 3));
    CString text("ab");
    EXPECT_STREQ(text.format("%s-%s_%d", text.asChar(), text.asChar(), 7).asChar(), "ab-ab_7");
    EXPECT_EQ(text.format("%5000d", 1).length(), 5000u);
}

TEST(Split, AllFlags) {
    const char* const expected[] = {"[ a b ][\t\r\n][ c]", "[ a b ][\t\r\n][][ c][]", "[a b][c]",
                                    "[a b][][][c][]"};
    for (int flags = 0; flags < 4; ++flags) {
        std::string pieces;
        for (const CString& piece : kvUtil::split(" a b ,\t\r\n,, c,", ',', flags & 1, flags & 2))
            pieces += std::string("[") + piece.asChar() + "]";
        EXPECT_EQ(pieces, expected[flags]);
    }
    EXPECT_TRUE(kvUtil::split("", ',', true, false).empty());
}

TEST(HashTable, KeepsTheOrderOfInsertion) {
    kv::StringTable<int> table;
    int& stays = table.getOrInsert("z");
    for (int i = 0; i < 1000; ++i) table.getOrInsert(CString().format("%d", i)) = i;
    stays = -1;
    table.getOrInsert("5") = -5;
    std::string walked;
    for (const auto& item : table) walked += item.key.asChar() + std::to_string(item.value) + " ";
    EXPECT_EQ(walked.substr(0, 33), "z-1 00 11 22 33 44 5-5 66 77 88 9");
    EXPECT_TRUE(table.count() == 1001 && *table.find("z") == -1 && !table.find("y"));
}

} // namespace
