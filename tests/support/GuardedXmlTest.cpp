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
    EXPECT_TRUE(isElement || (element.ValueStr().empty() && element.NoChildren()));
    return support::parseXmlDocument(text.c_str(), encoding) != nullptr;
}

// TinyXML alone, on a text that it withstands.
bool parsesUnguarded(const std::string& text) {
    const std::string withZeros = std::string(text.c_str()) + '\n' + std::string(8, '\0');
    TiXmlDocument document;
    document.SetTabSize(0);
    const bool isDeclared = text.find("<?xml") <= 3; // behind a mark, if any
    return document.Parse(withZeros.c_str(), nullptr,
                          isDeclared ? TIXML_ENCODING_UNKNOWN : TIXML_ENCODING_UTF8) &&
           !document.Error();
}

TEST(GuardedXml, RefusesWhatIsTooDeepOrTooRich) {
    // One character before each bracket in UTF-8 as TinyXML counts them, four in any other encoding.
    const std::string tags = "<r>" + repeated("\xF0<a>", 300) + "</r>";
    // The same with a quote.
    const std::string value = "<r v='\xF0'/>" + repeated("<a>", 300) + " '/>";
    const struct {
        const char* what;
        std::string text;
        bool isAccepted;
        TiXmlEncoding encoding = TIXML_ENCODING_UTF8;
    } cases[] = {
        {"deepest", nested(maxXmlDepth - 1, "<b/><c />x<d a=1/>"), true},
        {"too deep, empty", nested(maxXmlDepth, "<b/>"), false},
        {"too deep, unfinished", repeated("<a>", 1000000), false},
        {"too deep behind a prologue",
         "<?xml version='1.0'?><!-- - --><!DOCTYPE a>" + nested(maxXmlDepth + 1), false},
        {"wide", "<r>" + repeated("<a><b/></a>", 10000) + "</r>", true},
        {"richest", attributes(maxXmlAttributes), true},
        {"too rich", attributes(maxXmlAttributes + 1), false},
        {"brackets in CDATA", "<r><![CDATA[" + repeated("<a>", 1000) + "]]></r>", true},
        {"end tags in a comment", nested(200, "<!--" + repeated("</a>", 200) + "-->" + nested(100)), false},
        {"end tags in CDATA", nested(200, "<![CDATA[" + repeated("</a>", 200) + "]]>" + nested(100)), false},
        {"elements in a value", "<r v=\"" + repeated("<a b='c'>", 1000) + "\"/>", true},
        {"slashes in a value", nested(200, "<b v='/>'>" + nested(100) + "</b>"), false},
        {"an unquoted value", "<r a=b>" + nested(maxXmlDepth) + "</r>", false},
        {"no elements but unknowns", "<r>" + repeated("< a><?b?><!c>", 1000) + "</r>", true},
        {"an entity around tags", "<r>&#" + repeated("<a>", 1000) + "#65;</r>", true},
        {"an entity around a quote", "<r v='&#'" + repeated(" n ", 2000) + "#65;'/>", true},
        {"UTF-8", tags, true},
        {"any other encoding", tags, false, TIXML_ENCODING_UNKNOWN},
        {"a quote in UTF-8", value, true},
        {"a quote in any other encoding", value, false, TIXML_ENCODING_UNKNOWN},
        {"a name in UTF-8",
         "<\xC3\xA4 \xC3\xA4='/>' v\xC3\xA4='>'>" + nested(maxXmlDepth - 1) + "</\xC3\xA4>", true},
        {"a name in UTF-8 too deep", "<v \xC3\xA4='/>'>" + nested(maxXmlDepth) + "</v>", false},
        {"blanks in a tag", nested(200, "<b\n v\t=\r\n'/>'\f\v>" + nested(100) + "</b>"), false},
        {"a mark", "\xEF\xBB\xBF" + tags, true, TIXML_ENCODING_UNKNOWN},
        {"declared as UTF-8", "<?xml encoding='utf-8'?>" + tags, true, TIXML_ENCODING_UNKNOWN},
        {"declared otherwise", " <?XML encoding='ISO-8859-1'?>" + tags, false},
    };
    for (const auto& c : cases) EXPECT_EQ(parses(c.text, c.encoding), c.isAccepted) << c.what;
}

TEST(GuardedXml, SurvivesCutsAndBrokenBytes) {
    const std::string sample =
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding='UTF-8' standalone=no?><!DOCTYPE a>"
        "<a b='1' c=2 d = \"&lt;&#x41;&#66;\"><b/>t\xC3\xA4xt &amp; <c >"
        "<![CDATA[ ]] > <d> ]]></c ><?pi x?>\xF0\x9F\x98\x80</a><!-- end -->";
    ASSERT_TRUE(parses(sample));
    int accepted = 0;
    for (size_t length = 0; length < sample.size(); ++length) {
        accepted += parses(sample.substr(0, length));
        for (const char byte : {'\xEF', '\xF0', '<', '>', '&', '#', '=', '/', '\'', '\0'}) {
            std::string broken = sample;
            broken[length] = byte;
            EXPECT_EQ(parses(broken), parsesUnguarded(broken)) << broken;
            parses(broken.substr(0, length + 1), TIXML_ENCODING_UNKNOWN);
        }
    }
    EXPECT_EQ(accepted, 3); // cut behind the declaration, the document type, the root element

    EXPECT_FALSE(parses("<a></b>") || parses("<a b='1' b='2'/>"));
    EXPECT_FALSE(support::parseXmlDocument(nullptr, TIXML_ENCODING_UTF8));
    TiXmlElement element("old");
    element.SetAttribute("old", 1);
    ASSERT_TRUE(support::parseXmlElement(" <new a='1'><b/></new> rest", element));
    EXPECT_TRUE(element.ValueStr() == "new" && !element.Attribute("old") && element.FirstChildElement("b"));
    EXPECT_FALSE(support::parseXmlElement(nullptr, element));
    EXPECT_FALSE(element.FirstChild() || element.FirstAttribute());
}

} // namespace
