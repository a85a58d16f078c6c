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
    const std::string more = "<!-- c -->text<foreign uid='6' identifier='mode' type='4' "
                             "alteroutputs='5,6,1'><x/><inputgui widget='combobox'>"
                             "<!-- c --><guislider min='7'/></inputgui></foreign>"
                             "<input uid='7' identifier='only min' type='8'><inputgui widget='Slider'><a "
                             "min='3' clamp='yes'/></inputgui></input>"
                             "<input uid='8' identifier='none' type='6'/><input uid='-9' "
                             "identifier='picture' type='5' default='4'/>";
    const auto material = read(document(
        output + "<x uid='4294967296' identifier='h' format='2' width=' 8x' height='' mipmaps='-1'/>",
        input + more));
    ASSERT_TRUE(material);
    EXPECT_EQ(
        modelText(*material, {"color", "h"}),
        "pkg:/brick \"Br\xC3\xAF"
        "ck\" 2 outputs, 5 inputs\n"
        "output 1 color format 3 512x256 3 levels dynamic\n"
        "output 4294967295 h format -1 8x0 -1 levels\n"
        "input 5 scale 18 = 0.5,2,0,0 default 0.5,2,0,0 min 1,0,0,0 max 3,4,0,0 step 0,0,0,0 clamp widget 1 "
        "\"Sc\" described \"How large\"\n"
        "input 6 mode 33 = 0,0,0,0 widget 0\n"
        "input 7 only min 34 = 0,0,0,0 default 0,0,0,0 min 3,0,0,0 widget 0\n"
        "input 8 none 17 = 0,0,0,0\n"
        "input 0 picture 64 = 0,0,0,0 default 0,0,0,0\n");
    EXPECT_EQ(material->getInput("scale")->getModifiedSignal().numConnections(),
              2); // the material and the color

    material->getInput("mode")->setValueI(1, 0); // names itself, another input and an output
    EXPECT_TRUE(material->isModified() && material->getOutput("color")->isModified() &&
                material->getInput("scale")->isModified());
    EXPECT_FALSE(material->getOutput("h")->isModified());
}

TEST(Reader, TypeAndFormatCodes) {
    const int types[] = {17, 18, 19, 20, 33, 64, 17, 17, 34, 35, 36, 17};
    for (int code = -1; code <= 11; ++code) {
        const auto material =
            read(document(replaced(output, "'12'", "'" + std::to_string(code * 4) + "'"),
                          "<input uid='5' identifier='a' type='" + std::to_string(code) + "'/>"));
        ASSERT_TRUE(material);
        EXPECT_EQ(material->getInput("a")->getType(), code < 0 ? 17 : types[code]) << code;
        EXPECT_EQ(material->getOutput("color")->getFormat(), code < 0 || code > 7 ? -1 : code) << code;
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
    const char* const edits[][2] = {
        {"'full'", "'Full'"},
        {" content=", " x="},
        {"<sbsdescription", "<!--<sbsdescription content='full'>--><x"},
        {"count='2'", "count='0'"},
        {"count='2'", ""},
        {"count='2'", "count='many'"},
        {"<graphs", "<graph"},
        {"pkgurl=", "x="},
        {"label=", "x="},
        {"<outputs>", "<x/><o>"},
        {" uid='1'", ""},
        {" identifier='color'", ""},
        {" format=", " x="},
        {" width=", " x="},
        {" height=", " x="},
        {" mipmaps=", " x="},
        {" uid='5'", ""},
        {" identifier='scale'", ""},
        {" type=", " x="},
        {" widget=", " x="},
        {"</output", "<output/></output"},
        {"</inputs>", "<x/></inputs>"},
    };
    for (const auto& edit : edits)
        EXPECT_FALSE(read(replaced(whole, edit[0], edit[1]))) << edit[0] << " " << edit[1];

    EXPECT_TRUE(read(document("", "")));
    EXPECT_TRUE(read(replaced(whole, " count='2'", " count=' 1.9'")));
    EXPECT_FALSE(read(head + "<inputs/>" + tail));
    EXPECT_FALSE(read(head + "<outputs/>" + tail));
}

} // namespace

} // namespace kvSubstance
