#include "tests/ClassicText.h"
#include "tests/material/ModelText.h"

#include <gtest/gtest.h>

namespace {

using namespace kvSubstance;

const std::string output =
    "<output uid='1' identifier='color' format='12' width='512' height='256' mipmaps='3' "
    "dynamicsize='YES'/>";
const std::string input = "<input uid='5' identifier='scale' type='1' default='0.5, 2,9' alteroutputs='1,99'>"
                          "<inputgui widget='slider' label='Sc' description='How large'>"
                          "<guislider min='1' max='3,4' step='x' clamp='ON'/></inputgui></input>";

std::string document(const std::string& outputs, const std::string& inputs) {
    return "<?xml version=\"1.0\"?><!-- c --><sbsdescription content='full'><graphs count='2'>"
           "<graph pkgurl='pkg:/brick' label='Br&#xEF;ck'><outputs>" +
           outputs + "</outputs><inputs>" + inputs + "</inputs></graph><graph/></graphs></sbsdescription>";
}

kv::Reference<Substance> read(const std::string& text) {
    return SubstanceReader::getInstance().readFromXMLData(text.c_str());
}

std::string outputText(const SubstanceOutput& entity) {
    ClassicText text;
    text << entity.getUID() << " format " << entity.getFormat() << " " << entity.getXSize() << "x"
         << entity.getYSize() << " " << entity.getNumMipMaps() << (entity.getDynamicSize() ? " dynamic" : "");
    return text.str();
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
    EXPECT_STREQ(material->getPackageURL().asChar(), "pkg:/brick");
    EXPECT_EQ(quoted(material->getLabel()), " \"Br\xC3\xAF\x63k\"");
    EXPECT_EQ(outputText(*material->getOutput("color")), "1 format 3 512x256 3 dynamic");
    EXPECT_EQ(outputText(*material->getOutput("h")), "4294967295 format -1 8x0 -1");
    std::string inputs;
    for (const kvString::CString& identifier : material->getInputIds())
        inputs += inputText(*material->getInput(identifier)) + "\n";
    EXPECT_EQ(inputs,
              "scale 18 = 0.5,2,0,0 default 0.5,2,0,0 min 1,0,0,0 max 3,4,0,0 step 0,0,0,0 clamp widget 1 "
              "\"Sc\" described \"How large\"\n"
              "mode 33 = 0,0,0,0 widget 0\n"
              "min 34 = 0,0,0,0 default 0,0,0,0 min 3,0,0,0 widget 0\n"
              "picture 64 = 0,0,0,0 default 0,0,0,0\n");
    EXPECT_FALSE(material->isModified());
    EXPECT_TRUE(material->getEntity(6) && material->getEntity(0));

    material->getInput("mode")->setValueI(1, 0); // names itself, another input and an output
    EXPECT_TRUE(material->getOutput("color")->isModified() && material->getInput("scale")->isModified());
    EXPECT_FALSE(material->getOutput("h")->isModified());
}

TEST(Reader, TypeAndFormatCodes) {
    const int types[] = {17, 18, 19, 20, 33, 64, 17, 17, 34, 35, 36, 17};
    for (int code = 0; code <= 11; ++code) {
        const auto material =
            read(document("<output uid='1' identifier='o' width='1' height='1' mipmaps='1' format='" +
                              std::to_string(code * 4) + "'/>",
                          "<input uid='5' identifier='a' type='" + std::to_string(code) + "'/>"));
        EXPECT_EQ(material->getInput("a")->getType(), types[code]) << code;
        EXPECT_EQ(material->getOutput("o")->getFormat(), code > 7 ? -1 : code) << code;
    }
}

TEST(Reader, BrokenDocuments) {
    const std::string whole = document(output, input);
    const auto readsWith = [&](const char* text, const std::string& replacement) {
        std::string edited = whole;
        return !!read(edited.replace(whole.find(text), std::string(text).size(), replacement));
    };
    for (const char* const required :
         {" content", " count", " pkgurl", " label", " uid='1'", " identifier='color'", " format", " width",
          " height", " mipmaps", " uid='5'", " identifier='scale'", " type", " widget"})
        EXPECT_FALSE(readsWith(required, std::string(" x") + (required + 1))) << required;
    const char* const edits[][2] = {{"'full'", "'Full'"},
                                    {"'2'", "'0'"},
                                    {"'2'", "'many'"},
                                    {"<graphs", "<graph"},
                                    {"</outputs", "<x/></outputs"},
                                    {"</inputs>", "<x/></inputs>"},
                                    {"outputs>", "x>"},
                                    {"inputs>", "x>"}};
    for (const auto& edit : edits) EXPECT_FALSE(readsWith(edit[0], edit[1])) << edit[0] << " " << edit[1];
    for (size_t size = 0; size < whole.size(); ++size) EXPECT_FALSE(read(whole.substr(0, size))) << size;
    EXPECT_FALSE(SubstanceReader::getInstance().readFromXMLData(nullptr));
    EXPECT_TRUE(read(whole) && read(document("", "")));
}

} // namespace
