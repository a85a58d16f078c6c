// Strings, counted references and hash tables.
#include "platform/base.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using kvString::CString;
using kvString::IString;

std::string joined(const std::vector<CString>& pieces) {
    std::string all;
    for (const CString& piece : pieces) all += std::string("[") + piece.asChar() + "]";
    return all;
}

TEST(CString, ComparesWithoutCaseByUnsignedBytes) {
    EXPECT_EQ(CString("DiffUSE").compareNoCase("diffuse"), 0);
    EXPECT_LT(CString("Apple").compareNoCase("bee"), 0);
    EXPECT_LT(CString("ab").compareNoCase("ABC"), 0);
    EXPECT_GT(CString("\xC4").compareNoCase("z"), 0);
    EXPECT_NE(CString("\xC4").compareNoCase("\xE4"), 0); // ASCII letters only
    EXPECT_TRUE(CString("z") < CString("\x80"));
    EXPECT_FALSE(CString("a", 1) == CString("a\0b", 3));
    EXPECT_TRUE(CString(nullptr).empty());
}

TEST(CString, FormatsItselfAndLongTexts) {
    CString text("ab");
    text.format("%s-%s_%d", text.asChar(), text.asChar(), 7);
    EXPECT_STREQ(text.asChar(), "ab-ab_7");
    EXPECT_EQ(text.format("%5000d", 1).length(), 5000u);
    text.append(text);
    EXPECT_EQ(text.length(), 10000u);
}

TEST(Split, AllFlags) {
    const struct {
        const char* text;
        const char *plain, *keeping, *trimming, *both; // the pieces under each pair of flags
    } cases[] = {
        {"", "", "", "", ""},
        {"a", "[a]", "[a]", "[a]", "[a]"},
        {",", "", "[][]", "", "[][]"},
        {"a,", "[a]", "[a][]", "[a]", "[a][]"},
        {",,b", "[b]", "[][][b]", "[b]", "[][][b]"},
        {" a b ,\t\r\n, c", "[ a b ][\t\r\n][ c]", "[ a b ][\t\r\n][ c]", "[a b][c]", "[a b][][c]"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(joined(kvUtil::split(c.text, ',', false, false)), c.plain);
        EXPECT_EQ(joined(kvUtil::split(c.text, ',', true, false)), c.keeping);
        EXPECT_EQ(joined(kvUtil::split(c.text, ',', false, true)), c.trimming);
        EXPECT_EQ(joined(kvUtil::split(c.text, ',', true, true)), c.both);
    }
}

TEST(IString, KeepsTextAndSurvivesInvalidBytes) {
    const char* const umlaut = "gr\xC3\xBC\x6E";
    EXPECT_STREQ(IString(umlaut, kvString::EncodingUtf8).asMultibyte(kvString::EncodingUtf8).asChar(),
                 umlaut);
    for (const auto from : {kvString::EncodingMultibyte, kvString::EncodingUtf8}) {
        const IString broken("a\xFF\xC3(\xF0\x80", from);
        EXPECT_EQ(broken.asMultibyte(from).asChar()[0], 'a');
#if !defined(_WIN32)
        EXPECT_STREQ(broken.asMultibyte().asChar(), "a\xFF\xC3(\xF0\x80");
#endif
    }
    EXPECT_TRUE(IString(nullptr, kvString::EncodingUtf8) == IString());
}

struct Counted : kv::ReferenceCount {
    explicit Counted(int& deletions)
        : numDeletions(deletions) {}
    ~Counted() override { ++numDeletions; }
    int& numDeletions;
    kv::Reference<Counted> other;
};

TEST(Reference, DeletesExactlyOnce) {
    int deletions = 0;
    {
        kv::Reference<Counted> a(new Counted(deletions));
        kv::Reference<const Counted> b = a;
        kv::Reference<Counted>& same = a;
        a = same;
        a = std::move(same);
        EXPECT_EQ(a->numReferences(), 2);
        kv::Reference<Counted> c = std::move(a);
        EXPECT_FALSE(a);
        EXPECT_TRUE(c == b && c->numReferences() == 2);
        c->other = c; // a ring of one, opened by hand
        b.reset();
        c->other.reset();
        EXPECT_EQ(deletions, 0);
    }
    EXPECT_EQ(deletions, 1);
}

TEST(HashTable, KeepsTheOrderOfInsertion) {
    kv::StringTable<int> table;
    for (const char* key : {"z", "a", "m"}) table.getOrInsert(key) = static_cast<int>(key[0]);
    int& stays = table.getOrInsert("z");
    for (int i = 0; i < 1000; ++i) table.getOrInsert(CString().format("%d", i)) = i;
    stays = 1;
    table.getOrInsert("a") = 2;
    std::string walked;
    for (const auto& item : table)
        walked += CString().format("%s%d ", item.key.asChar(), item.value).asChar();
    EXPECT_EQ(walked.substr(0, 16), "z1 a2 m109 00 11");
    EXPECT_EQ(table.count(), 1003);
    EXPECT_EQ(*table.find("z"), 1);
    EXPECT_EQ(table.find("y"), nullptr);
    table.clear();
    EXPECT_TRUE(table.count() == 0 && !table.find("z") && table.begin() == table.end());
}

} // namespace
