// Elements of descriptions, read one by one.
#include "support/GuardedXml.h"
#include "tests/framework/description/DescriptionText.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>

using namespace SubstanceAir;
using descriptiontext::print;

namespace {

std::string printInput(const std::string& xml, std::vector<OutputDesc> outputs = {}) {
    const auto document = support::parseXmlDocument(xml.c_str(), TIXML_ENCODING_UTF8);
    const std::unique_ptr<InputDescBase> input = parseInput(*document->RootElement(), outputs);
    if (!input) return "none";
    EXPECT_EQ(print(*input->clone()), print(*input));
    std::string text = print(*input);
    for (const OutputDesc& output : outputs) text += print(output.alteringInputUids) + ".";
    return text;
}

} // namespace

TEST(InputParser, GuisPrintAsTinyXmlPrintsThem) {
    for (const char* const gui :
         {"<inputgui/>",
          "<inputgui label='Tint' widget=\"color\"><guicolor clamp='on'/><a><b/></a></inputgui>",
          "<inputgui a='&amp;&lt;&gt;&quot;&apos;' b='\"' c='&#x1;\xC3\xA4' \xC3\xA4=''> <a/> </inputgui>",
          "<inputgui>a &amp; b</inputgui>", "<inputgui><a/>mixed<b>c</b></inputgui>",
          "<inputgui><!-- - --><a><![CDATA[<]]></a><?b c?><!d></inputgui>"}) {
        const std::string xml = "<input type='0'>" + std::string(gui) + "</input>";
        const auto document = support::parseXmlDocument(xml.c_str(), TIXML_ENCODING_UTF8);
        ASSERT_TRUE(document) << gui;
        TiXmlPrinter printer;
        printer.SetStreamPrinting();
        document->RootElement()->FirstChild()->Accept(&printer);
        std::vector<OutputDesc> outputs;
        EXPECT_EQ(parseInput(*document->RootElement(), outputs)->guiXml, printer.Str());
    }
}

TEST(InputParser, Values) {
    const struct {
        std::string type, value, zero;
        std::vector<std::string> malformed;
    } cases[] = {
        {"0", "-0.5", "0", {" 1", "1,5", ""}},
        {"1", "0.5,-2", "0,0", {"1, 2"}},
        {"2", "1,2,3", "0,0,0", {"1,2", "1,2,3,4", "1,2,3,"}},
        {"3", "1,2,3,-4", "0,0,0,0", {"1,2,,4"}},
        {"4", "-7", "0", {"3.5", "2147483648"}},
        {"8", "4,9", "0,0", {"4.0,9"}},
        {"9", "1,2,3", "0,0,0", {"a,2,3"}},
        {"10", "1,2,3,-4", "0,0,0,0", {"1"}},
    };
    const auto readAll = [](const std::string& type, const std::string& text) {
        return printInput("<input type='" + type + "' default='" + text + "' min='" + text + "' max='" +
                          text + "'/>");
    };
    for (const auto& [type, value, zero, malformed] : cases) {
        const std::string begin = "input 0  '' type " + type + " ";
        EXPECT_EQ(readAll(type, value), begin + value + " in " + value + " to " + value + " alters .\n");
        for (const std::string& text : malformed)
            EXPECT_EQ(readAll(type, text), begin + zero + " in " + zero + " to " + zero + " alters .\n")
                << text;
    }
}

TEST(InputParser, TypesAreQueriedAsIntegersAndUidsAsWholeNumbers) {
    for (const char* const type : {"6", "7", "11", "-1", "", "x4"})
        EXPECT_EQ(printInput(std::string("<input type='") + type + "'/>"), "none") << type;
    EXPECT_EQ(printInput("<input type=' +5x' uid='-1'/>"), "input 4294967295  '' type 5 image alters .\n");
    for (const char* const uid : {"7 ", " 7", "7a", ""})
        EXPECT_EQ(printInput(std::string("<input type='5' uid='") + uid + "'/>"),
                  "input 0  '' type 5 image alters .\n");
}

TEST(InputParser, AlteredOutputsAreLinkedOnBothSides) {
    std::vector<OutputDesc> outputs(4); // uids 0, 5, 5, 7; of equal ones the first is linked
    outputs[1].uid = outputs[2].uid = 5;
    outputs[3].uid = 7;
    const std::vector<std::array<std::string, 3>> cases = {
        {"", "", "...."},        {"5,abc,7", "0,5,7", "1.1..1."}, {"7,5", "5,7", ".1..1."},
        {"5,", "0,5", "1.1..."}, {",", "0,0", "1,1...."},         {"6, 5,7 ", "0,0", "1,1...."},
        {"9", "", "...."}};
    for (const auto& [text, altered, altering] : cases)
        EXPECT_EQ(printInput("<input uid='1' type='5' alteroutputs='" + text + "'/>", outputs),
                  "input 1  '' type 5 image alters " + altered + ".\n" + altering);
}

TEST(Presets, DocumentOfTheirOwn) {
    std::vector<Preset> presets;
    EXPECT_TRUE(parsePresetsDocument(presets, "<sbspresets><sbspreset label='L'/><sbspreset/></sbspresets>"));
    const char* const none = nullptr;
    for (const char* const xml : {none, "", "<sbspresets/>", "<other><sbspreset/></other>"})
        EXPECT_FALSE(parsePresetsDocument(presets, xml));
    EXPECT_EQ(presets.size(), 2u);
    EXPECT_EQ(presets[0].label, "L");
}
