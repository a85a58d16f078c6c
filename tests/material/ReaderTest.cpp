#include "tests/material/ModelText.h"

#include <gtest/gtest.h>

namespace kvSubstance {

namespace {

const std::string head = "<?xml version=\"1.0\"?><!-- c --><sbsdescription content='full'><graphs count='2'>"
                         "<graph pkgurl='pkg:/brick' label='Br&#xEF;ck'>";
const std::string output =
    "<output uid='1' identifier='color' format='12' width='512' height='256' mipmaps='3' "
    "dynamicsize='YES'/>";
const std::string input = "<input uid='5' identifier='scale' type='1' default='0.5, 2,9' alteroutputs='1,99'>"
                          "<inputgui widget='slider' label='Sc' description='How large'>"
                          "<guislider min='1' max='3,4' step='x' clamp='ON'/></inputgui></input>";
const std::string tail = "</graph><graph/></graphs></sbsdescription>";

std::string document(const std::string& outputs, const std::string& inputs) {
    return head + "<outputs>" + outputs + "</outputs><inputs>" + inputs + "</inputs>" + tail;
}

kv::Reference<Substance> read(const std::string& text) {
    return SubstanceReader::getInstance().readFromXMLData(text.c_str());
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const size_t place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return text.replace(place, from.size(), to);
}

TEST(Reader, WholeModel) {
    const auto material = read(document(
        output + "<x uid='4294967296' identifier='h' format='2' width=' 8x' height='' mipmaps='-1'/>",
        input + "<!-- c -->text<foreign uid='6' identifier='mode' type='4' alteroutputs='5,6,1'><x/>"
                "<inputgui widget='combobox'><!-- c --><guislider min='7'/></inputgui></foreign>"
                "<input uid='7' identifier='min' type='8'>"
                "<inputgui widget='Slider'><a min='3' clamp='yes'/></inputgui></input>"
                "<input uid='-9' identifier='picture' type='5' default='4'/>"));
    ASSERT_TRUE(material);
    EXPECT_EQ(modelText(*material, {"color", "h"}),
              "pkg:/brick \"Br\xC3\xAF\x63k\" \n"
              "1 color format 3 512x256 3 levels dynamic\n"
              "4294967295 h format -1 8x0 -1 levels\n"
              "5 scale 18 = 0.5,2,0,0 default 0.5,2,0,0 min 1,0,0,0 max 3,4,0,0 step 0,0,0,0 clamp widget 1 "
              "\"Sc\" described \"How large\"\n"
              "6 mode 33 = 0,0,0,0 widget 0\n"
              "7 min 34 = 0,0,0,0 default 0,0,0,0 min 3,0,0,0 widget 0\n"
              "0 picture 64 = 0,0,0,0 default 0,0,0,0\n");
    EXPECT_EQ(material->getInput("scale")->getModifiedSignal().numConnections(), 2); // material and color

    material->getInput("mode")->setValueI(1, 0); // names itself, another input and an output
    EXPECT_TRUE(material->getOutput("color")->isModified() && material->getInput("scale")->isModified());
    EXPECT_FALSE(material->getOutput("h")->isModified());
}

TEST(Reader, TypeAndFormatCodes) {
    const int types[] = {17, 18, 19, 20, 33, 64, 17, 17, 34, 35, 36, 17};
    for (int code = 0; code <= 11; ++code) {
        const std::string type = std::to_string(code);
        const auto material = read(document(replaced(output, "'12'", "'" + std::to_string(code * 4) + "'"),
                                            "<input uid='5' identifier='a' type='" + type + "'/>"));
        ASSERT_TRUE(material);
        EXPECT_EQ(material->getInput("a")->getType(), types[code]) << code;
        EXPECT_EQ(material->getOutput("color")->getFormat(), code > 7 ? -1 : code) << code;
    }
}

TEST(Reader, PrefixesAreRefused) {
    const std::string whole = document(output, input);
    for (size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(read(whole.substr(0, length))) << whole.substr(0, length);
    EXPECT_TRUE(read(whole));
    EXPECT_TRUE(read(whole + "\n"));
    EXPECT_FALSE(SubstanceReader::getInstance().readFromXMLData(nullptr));
}

TEST(Reader, BrokenDocuments) {
    const std::string whole = document(output, input);
    // Each required attribute missing in turn, then wrong values and places.
    for (const char* const name :
         {" content", " count", " pkgurl", " label", " uid='1'", " identifier='color'", " format", " width",
          " height", " mipmaps", " uid='5'", " identifier='scale'", " type", " widget"})
        EXPECT_FALSE(read(replaced(whole, name, std::string(" x") + (name + 1)))) << name;
    const char* const edits[][2] = {{"'full'", "'Full'"},
                                    {"'2'", "'0'"},
                                    {"'2'", "'many'"},
                                    {"<graphs", "<graph"},
                                    {"</outputs", "<x/></outputs"},
                                    {"</inputs>", "<x/></inputs>"}};
    for (const auto& edit : edits)
        EXPECT_FALSE(read(replaced(whole, edit[0], edit[1]))) << edit[0] << " " << edit[1];

    EXPECT_TRUE(read(document("", "")));
    EXPECT_TRUE(read(replaced(whole, " count='2'", " count=' 1.9'")));
    EXPECT_FALSE(read(head + "<inputs/>" + tail));
    EXPECT_FALSE(read(head + "<outputs/>" + tail));
}

} // namespace

} // namespace kvSubstance
