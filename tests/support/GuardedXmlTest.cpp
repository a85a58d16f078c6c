#include "support/GuardedXml.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using support::maxXmlAttributes;
using support::maxXmlDepth;

std::string repeated(const std::string& piece, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) all += piece;
    return all;
}

std::string nested(int depth, const std::string& inside = "") {
    return repeated("<a>", depth) + inside + repeated("</a>", depth);
}

std::string attributes(int count) {
    std::string all = "<a";
    for (int i = 0; i < count; ++i) all += " n" + std::to_string(i) + "='>'";
    return all + "/>";
}

bool parses(const std::string& text, TiXmlEncoding encoding = TIXML_ENCODING_UTF8) {
    TiXmlElement element("");
    const bool isElement = support::parseXmlElement(text.c_str(), element);
    EXPECT_TRUE(isElement ||
                (element.ValueStr().empty() && element.NoChildren() && !element.FirstAttribute()));
    return support::parseXmlDocument(text.c_str(), encoding) != nullptr;
}

TEST(GuardedXml, RefusesWhatIsTooDeepOrTooRich) {
    const struct {
        const char* what;
        std::string text;
        bool isAccepted;
    } cases[] = {
        {"deepest", nested(maxXmlDepth), true},
        {"too deep", nested(maxXmlDepth + 1), false},
        {"deepest, open and empty", nested(maxXmlDepth - 1, "<b/><c />x<d a=1/>"), true},
        {"too deep, empty", nested(maxXmlDepth, "<b/>"), false},
        {"too deep, unfinished", repeated("<a>", 1000000), false},
        {"too deep behind a prologue",
         "<?xml version='1.0'?><!-- - --><!DOCTYPE a>" + nested(maxXmlDepth + 1), false},
        {"wide", "<r>" + repeated("<a><b/></a>", 10000) + "</r>", true},
        {"richest", attributes(maxXmlAttributes), true},
        {"too rich", attributes(maxXmlAttributes + 1), false},
        {"brackets in a comment", "<r><!-- " + repeated("<a>", 1000) + " --></r>", true},
        {"brackets in CDATA", "<r><![CDATA[" + repeated("<a>", 1000) + "]]></r>", true},
        {"end tags in a comment", nested(200, "<!--" + repeated("</a>", 200) + "-->" + nested(100)), false},
        {"end tags in CDATA", nested(200, "<![CDATA[" + repeated("</a>", 200) + "]]>" + nested(100)), false},
        {"elements in a value", "<r v=\"" + repeated("<a b='c'>", 1000) + "\"/>", true},
        {"end tags in a value", nested(200, "<b v='" + repeated("</a>", 200) + "'/>" + nested(100)), false},
        {"slashes in a value", nested(200, "<b v='/>'>" + nested(100) + "</b>"), false},
        {"an unquoted value", "<r a=b>" + nested(maxXmlDepth) + "</r>", false},
        {"no elements but unknowns", "<r>" + repeated("< a><?b?><!c>", 1000) + "</r>", true},
        {"an entity around tags", "<r>&#" + repeated("<a>", 1000) + "#65;</r>", true},
        {"an entity around a quote", "<r v='&#'" + repeated(" n ", 2000) + "#65;'/>", true},
        {"a bracket in a broken character", "<r>" + repeated("\xF0<a>", 1000) + "</r>", true},
    };
    for (const auto& c : cases) EXPECT_EQ(parses(c.text), c.isAccepted) << c.what;
}

TEST(GuardedXml, FollowsTheEncodingThatTinyXmlUses) {
    // One character in UTF-8 as TinyXML counts them, four in any other encoding.
    const std::string tags = "<r>" + repeated("\xF0<a>", 300) + "</r>";
    const struct {
        const char* prologue;
        TiXmlEncoding encoding;
        bool isUtf8;
    } cases[] = {
        {"", TIXML_ENCODING_UTF8, true},
        {"", TIXML_ENCODING_UNKNOWN, false},
        {"\xEF\xBB\xBF", TIXML_ENCODING_UNKNOWN, true},
        {"<?xml version='1.0'?>", TIXML_ENCODING_UNKNOWN, true},
        {"<?xml encoding='utf-8'?>", TIXML_ENCODING_UNKNOWN, true},
        {" <?XML encoding='ISO-8859-1'?>", TIXML_ENCODING_UTF8, false},
    };
    for (const auto& c : cases) EXPECT_EQ(parses(c.prologue + tags, c.encoding), c.isUtf8) << c.prologue;
}

TEST(GuardedXml, FindsErrors) {
    for (const char* text : {"<a/>", "<a></a>", "<a/>\n", "<a/><!-- c -->", "\xEF\xBB\xBF<a b='&#228;'/>"}) {
        EXPECT_TRUE(parses(text)) << text;
    }
    for (const char* text :
         {"", " ", "x", "<", "<a", "<a>", "<a b", "<a b=", "<a b='", "<a></b>", "<a/", "</a",
          "<a b='1' b='2'/>", "<!--", "<![CDATA[", "<?xml", "<?xml version=", "&#", "<a>&#x"}) {
        EXPECT_FALSE(parses(text)) << text;
    }
    EXPECT_FALSE(support::parseXmlDocument(nullptr, TIXML_ENCODING_UTF8));
    TiXmlElement element("old");
    element.SetAttribute("old", 1);
    ASSERT_TRUE(support::parseXmlElement(" <new a='1'><b/></new> rest", element));
    EXPECT_TRUE(element.ValueStr() == "new" && !element.Attribute("old") && element.FirstChildElement("b"));
    EXPECT_FALSE(support::parseXmlElement(nullptr, element));
    EXPECT_TRUE(element.NoChildren() && !element.Attribute("a"));
}

TEST(GuardedXml, SurvivesCutsAndBrokenBytes) {
    const std::string sample =
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding='UTF-8' standalone=no?><!DOCTYPE a>"
        "<!-- < -- > --><a b='1' c=2 d = \"&lt;&#x41;&#66;\"><b/>t\xC3\xA4xt &amp; <c >"
        "<![CDATA[ ]] > <d> ]]></c ><?pi x?>\xF0\x9F\x98\x80</a><!-- end -->";
    ASSERT_TRUE(parses(sample));
    int accepted = 0;
    for (size_t length = 0; length < sample.size(); ++length) {
        accepted += parses(sample.substr(0, length));
        for (const char byte : {'\xEF', '\xF0', '<', '>', '&', '\'', '\0'}) {
            std::string broken = sample;
            broken[length] = byte;
            parses(broken);
            parses(broken.substr(0, length + 1), TIXML_ENCODING_UNKNOWN);
        }
    }
    EXPECT_EQ(accepted, 4); // cut behind the declaration, the document type, the comment, the root element
}

} // namespace
