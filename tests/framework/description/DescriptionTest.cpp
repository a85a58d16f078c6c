// Elements of descriptions, read one by one.
#include "framework/description/DescriptionParser.h"
#include "framework/description/OutputFormat.h"
#include "support/GuardedXml.h"
#include "tests/framework/description/DescriptionText.h"

#include <gtest/gtest.h>

#include <memory>

using namespace SubstanceAir;
using descriptiontext::print;

namespace {

std::string printInput(const std::string& xml, std::vector<OutputDesc> outputs = {}) {
    const auto document = support::parseXmlDocument(xml.c_str(), TIXML_ENCODING_UTF8);
    const std::unique_ptr<InputDescBase> input = parseInput(*document->RootElement(), outputs);
    if (!input) return "none";
    EXPECT_EQ(print(*input->clone()), print(*input));
    return print(*input);
}

std::string printOutput(const std::string& xml) {
    const auto document = support::parseXmlDocument(xml.c_str(), TIXML_ENCODING_UTF8);
    OutputDesc output;
    EXPECT_TRUE(parseOutput(*document->RootElement(), output));
    return print(output);
}

OutputDesc outputOf(unsigned int uid) {
    OutputDesc output;
    output.uid = uid;
    return output;
}

} // namespace

TEST(InputParser, Values) {
    const struct {
        const char* type;
        const char* text;
        const char* value;
    } cases[] = {
        {"0", "0.5", "0.5"},
        {"0", "-1e3", "-1000"},
        {"0", " 1", "0"},
        {"0", "1 ", "0"},
        {"0", "1,5", "0"},
        {"0", "", "0"},
        {"1", "0.5,-2", "0.5,-2"},
        {"1", "1, 2", "0,0"},
        {"2", "1,2,3", "1,2,3"},
        {"2", "1,2", "0,0,0"},
        {"2", "1,2,3,4", "0,0,0"},
        {"2", "1,2,3,", "0,0,0"},
        {"3", "1,2,3,4.5", "1,2,3,4.5"},
        {"3", "1,2,,4", "0,0,0,0"},
        {"4", "-7", "-7"},
        {"4", "3.5", "0"},
        {"4", "2147483648", "0"},
        {"8", "4,9", "4,9"},
        {"8", "4.0,9", "0,0"},
        {"9", "1,2,3", "1,2,3"},
        {"10", "1,2,3,-4", "1,2,3,-4"},
    };
    for (const auto& [type, text, value] : cases) {
        const std::string attribute = std::string("'") + text + "'";
        const std::string input = std::string("<input uid='1' type='") + type + "' default=" + attribute +
                                  " min=" + attribute + " max=" + attribute + "/>";
        EXPECT_EQ(printInput(input), std::string("input 1  \"\" type ") + type + " " + value + " in " +
                                         value + " to " + value + " alters \n");
    }
}

TEST(InputParser, TypesAreQueriedAsIntegersAndUidsAsWholeNumbers) {
    for (const char* const type : {"6", "7", "11", "-1", "", "x4", "99999999999"})
        EXPECT_EQ(printInput(std::string("<input type='") + type + "'/>"), "none") << type;
    EXPECT_EQ(printInput("<input/>"), "none");
    EXPECT_EQ(printInput("<input type=' +5x' uid='-1'/>"), "input 4294967295  \"\" type 5 image alters \n");
    for (const char* const uid : {" 7", "7 ", "7a", "4294967296", ""})
        EXPECT_EQ(printInput(std::string("<input type='5' uid='") + uid + "'/>"),
                  "input 0  \"\" type 5 image alters \n");
}

TEST(InputParser, IdentifierLabelAndGui) {
    EXPECT_EQ(printInput("<input uid='1' type='4' identifier='$size' default='3'/>"),
              "input 1 $size \"$size\" type 4 3 in 0 to 0 system alters \n");
    EXPECT_EQ(
        printInput(
            "<input uid='1' type='5' identifier='a$'>text<inputgui>\n  <x  a='1'/>\n</inputgui></input>"),
        "input 1 a$ \"\" type 5 image alters \n  <inputgui><x a=\"1\" /></inputgui>\n");
    EXPECT_EQ(printInput("<input uid='1' type='5' identifier='a'><inputgui label='A &amp; B'/></input>"),
              "input 1 a \"A & B\" type 5 image alters \n  <inputgui label=\"A &amp; B\" />\n");
}

TEST(InputParser, AlteredOutputsAreLinkedOnBothSides) {
    const struct {
        const char* text;
        const char* altered;
    } cases[] = {{"", ""},     {"5,abc,7", "0,5,7"}, {"7,5", "5,7"}, {"5,", "0,5"},
                 {",", "0,0"}, {"6, 5,7 ", "0,0"},   {"9", ""}};
    for (const auto& [text, altered] : cases) {
        const std::string xml = std::string("<input uid='1' type='5' alteroutputs='") + text + "'/>";
        EXPECT_EQ(printInput(xml, {outputOf(0), outputOf(5), outputOf(7)}),
                  std::string("input 1  \"\" type 5 image alters ") + altered + "\n");
    }

    std::vector<OutputDesc> outputs = {outputOf(5), outputOf(5), outputOf(7)};
    const auto document =
        support::parseXmlDocument("<input uid='3' type='0' alteroutputs='7,5,8'/>", TIXML_ENCODING_UTF8);
    parseInput(*document->RootElement(), outputs);
    EXPECT_EQ(print(outputs[0].alteringInputUids), "3");
    EXPECT_EQ(print(outputs[1].alteringInputUids), "") << "the first of equal uids is linked";
    EXPECT_EQ(print(outputs[2].alteringInputUids), "3");
}

TEST(OutputParser, Outputs) {
    EXPECT_EQ(printOutput("<output/>"), "output 0  \"\" format 0 mipmaps 0 diffuse altered by \n");
    EXPECT_EQ(
        printOutput("<output uid='4' identifier='o' format=' 12b' mipmaps='3b'><!--outputgui--><outputgui "
                    "label='O'/></output>"),
        "output 4 o \"O\" format 12 mipmaps 0 diffuse altered by \n");

    const struct {
        const char* channels;
        const char* usage;
    } cases[] = {
        {"<channel names='roughness'/>", "roughness"},
        {"<channel names='Roughness'/>", "diffuse"},
        {"<channel names='IOR'/>", "IOR"},
        {"<channel names='scattering3'/>", "scattering3"},
        {"<channel names='normal'/><channel names='height'/>", "normal"},
        {"<channel/><channel names='height'/>", "diffuse"},
        {"<channel names='normal,height'/>", "diffuse"},
        {"", "diffuse"},
    };
    for (const auto& [channels, usage] : cases)
        EXPECT_EQ(printOutput(std::string("<output><outputgui><channels>") + channels +
                              "</channels></outputgui></output>"),
                  std::string("output 0  \"\" format 0 mipmaps 0 ") + usage + " altered by \n");
}

// For each format what it becomes while the best class is struck from the mask, again and again.
TEST(OutputFormat, ClassesAreTriedInTheOrderOfPreference) {
    std::string text;
    for (const int format : {0, 4, 8, 12, 16, 20, 24, 28, 1, 5, 9, 13, 17, 2, 32, -1}) {
        EXPECT_EQ(acceptableFormat(format, AllFormatClasses), format);
        text += std::to_string(format) + ":";
        unsigned int mask = AllFormatClasses;
        for (int i = 0; i < 7; ++i) {
            const int present = acceptableFormat(format, mask);
            for (unsigned int bit = 1; bit < AllFormatClasses; bit *= 2) {
                if (acceptableFormat(format, mask & ~bit) == present) continue;
                mask &= ~bit;
                break;
            }
            text += " " + std::to_string(acceptableFormat(format, mask));
        }
        text += "\n";
    }
    EXPECT_EQ(text, "0: 17 9 1 16 12 28 0\n"
                    "4: 17 9 1 16 12 28 4\n"
                    "8: 17 9 1 16 12 28 8\n"
                    "12: 0 1 17 9 28 16 12\n"
                    "16: 0 17 9 1 28 12 16\n"
                    "20: 0 17 9 1 28 12 20\n"
                    "24: 0 17 9 1 28 12 24\n"
                    "28: 16 12 0 1 17 9 28\n"
                    "1: 17 9 0 16 12 28 1\n"
                    "5: 17 1 0 16 12 28 5\n"
                    "9: 17 1 0 16 12 28 9\n"
                    "13: 9 1 0 16 12 28 13\n"
                    "17: 9 1 0 16 12 28 17\n"
                    "2: 2 2 2 2 2 2 2\n"
                    "32: 32 32 32 32 32 32 32\n"
                    "-1: -1 -1 -1 -1 -1 -1 -1\n");
}

TEST(Presets, DocumentOfTheirOwn) {
    std::vector<Preset> presets;
    EXPECT_TRUE(parsePresetsDocument(
        presets, "<sbspresets><sbspreset pkgurl='u' label='L' description='D'>"
                 "<presetinput uid='5' identifier='i' type='8' value='1,2'/>"
                 "<presetinput uid='5x' type='x'/></sbspreset><sbspreset/></sbspresets>"));
    const std::string text =
        "preset u \"L\" \"D\"\n  5 i type 8 = 1,2\n  0  type 65535 = \npreset  \"\" \"\"\n";
    EXPECT_EQ(print(presets), text);

    for (const char* const xml :
         {"", "<sbspresets/>", "<other><sbspreset/></other>", "<sbspresets><sbspreset/>"})
        EXPECT_FALSE(parsePresetsDocument(presets, xml)) << xml;
    EXPECT_FALSE(parsePresetsDocument(presets, nullptr));
    EXPECT_EQ(print(presets), text);
}
