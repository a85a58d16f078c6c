// Elements of descriptions, read one by one.
#include "framework/description/OutputFormat.h"
#include "support/GuardedXml.h"
#include "tests/framework/description/DescriptionText.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
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

std::string printOutput(const std::string& xml) {
    const auto document = support::parseXmlDocument(xml.c_str(), TIXML_ENCODING_UTF8);
    OutputDesc output;
    EXPECT_TRUE(parseOutput(*document->RootElement(), output));
    return print(output);
}

} // namespace

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

TEST(OutputParser, Outputs) {
    EXPECT_EQ(printOutput("<output/>"), "output 0  '' format 0 mipmaps 0 diffuse altered by .\n");
    EXPECT_EQ(printOutput("<output uid='4' identifier='o' format=' 12b' mipmaps='3b'><!--outputgui-->"
                          "<outputgui label='O'/></output>"),
              "output 4 o 'O' format 12 mipmaps 0 diffuse altered by .\n");

    const std::vector<std::array<std::string, 2>> cases = {
        {"<channel names='roughness'/>", "roughness"},
        {"<channel names='Roughness'/>", "diffuse"},
        {"<channel names='scattering3'/>", "scattering3"},
        {"<channel names='normal'/><channel names='height'/>", "normal"},
        {"<channel names='normal,height'/>", "diffuse"}};
    for (const auto& [channels, usage] : cases)
        EXPECT_EQ(
            printOutput("<output><outputgui><channels>" + channels + "</channels></outputgui></output>"),
            "output 0  '' format 0 mipmaps 0 " + usage + " altered by .\n");
}

// For each format what it becomes while the class it has come to is struck from the mask, again and again.
TEST(OutputFormat, ClassesAreTriedInTheOrderOfPreference) {
    std::map<std::string, std::string> formatsByOrder;
    for (const int format : {0, 4, 8, 12, 16, 20, 24, 28, 1, 5, 9, 13, 17}) {
        std::string order;
        for (unsigned int mask = AllFormatClasses; mask != 0;) {
            const int present = acceptableFormat(format, mask);
            if (mask != AllFormatClasses) order += std::to_string(present) + " ";
            unsigned int bit = 1;
            while (mask != bit && acceptableFormat(format, mask & ~bit) == present) bit *= 2;
            mask &= ~bit;
        }
        EXPECT_EQ(acceptableFormat(format, AllFormatClasses), format);
        EXPECT_EQ(acceptableFormat(format, 0), format);
        formatsByOrder[order] += std::to_string(format) + " ";
    }
    const std::map<std::string, std::string> expected = {
        {"17 9 1 16 12 28 ", "0 4 8 "}, {"0 1 17 9 28 16 ", "12 "}, {"0 17 9 1 28 12 ", "16 20 24 "},
        {"16 12 0 1 17 9 ", "28 "},     {"17 9 0 16 12 28 ", "1 "}, {"17 1 0 16 12 28 ", "5 9 "},
        {"9 1 0 16 12 28 ", "13 17 "}};
    EXPECT_EQ(formatsByOrder, expected);
    for (const int other : {2, 32, -1}) EXPECT_EQ(acceptableFormat(other, 1), other);
}

TEST(Presets, DocumentOfTheirOwn) {
    std::vector<Preset> presets;
    EXPECT_TRUE(parsePresetsDocument(
        presets, "<sbspresets><sbspreset pkgurl='u' label='L' description='D'>"
                 "<presetinput uid='5' identifier='i' type='8' value='1,2'/>"
                 "<presetinput uid='5x' type='x'/></sbspreset><sbspreset/></sbspresets>"));
    for (const char* const xml : {"", "<sbspresets/>", "<other><sbspreset/></other>"})
        EXPECT_FALSE(parsePresetsDocument(presets, xml)) << xml;
    EXPECT_FALSE(parsePresetsDocument(presets, nullptr));
    EXPECT_EQ(print(presets), "preset u 'L' 'D'\n  5 i type 8 = 1,2.\n  0  type 65535 = .\npreset  '' ''\n");
}
