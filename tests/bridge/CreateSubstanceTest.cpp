#include "framework/description/PackageDesc.h"
#include "framework/render/PackageStackDesc.h"
#include "tests/bridge/TestPackages.h"
#include "tests/material/ModelText.h"

#include <gtest/gtest.h>

namespace kvSubstance {

namespace {

std::string outputs() {
    return outputTag(recording::freshUids(1), "out");
}

std::string combo(const std::string& items) {
    return "widget='combobox'><a/><guicombobox>" + items + "</guicombobox>";
}

std::string item(const char* value) {
    return std::string("<guicomboboxitem value='") + value + "' text='t" + value + "'/>";
}

std::string fillers(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += " \"-\"";
    return text;
}

TEST(CreateSubstance, InputsByTheirGui) {
    struct Case {
        int type;
        std::string defaultValue;
        std::string gui; // attributes and children of the "inputgui" element; empty: no such element
        std::string expected;
    };
    const std::string zero = " = 0,0,0,0 default 0,0,0,0";
    const std::string longText(3000, 'x');
    const Case cases[] = {
        {2, "0.5,0.2,0.1", "", "19 = 0.5,0.2,0.1,0 default 0.5,0.2,0.1,0"},
        {10, "1,-2,3,4", "", "36 = 1,-2,3,4 default 1,-2,3,4"},
        {0, "x", "widget='slider'>", "17" + zero + " widget 1"},
        {0, "0", "widget='slider' label='A&amp;\xC3\xA9' description='D'>",
         "17" + zero + " widget 1 \"A&\xC3\xA9\" described \"D\""},
        {0, "0", "widget='Slider' label='A'><a min='1'/>", "17" + zero},
        {0, "0", "label='A'><a min='1'/>", "17" + zero},
        {1, "0,0", "widget='angle'>", "18" + zero + " widget 2"},
        {4, "0", "widget='togglebutton'>", "33" + zero + " widget 3"},
        {3, "0,0,0,0", "widget='color'>", "20" + zero + " widget 4"},
        {0, "0", "widget='image' label='" + longText + "'>", "17" + zero + " widget 5 \"" + longText + "\""},
        // One number stands for all, and a wrong count hands on what was there before.
        {2, "0,0,0", "widget='slider'><a min='0.5'/>", "19" + zero + " min 0.5,0.5,0.5,0 widget 1"},
        {2, "0,0,0", "widget='slider'><a min='1,2'/>", "19" + zero + " min 0,0,0,0 widget 1"},
        {2, "0,0,0", "widget='slider'><a min='3,4,5' max='1,2' step=''/>",
         "19" + zero + " min 3,4,5,0 max 3,4,5,0 step 3,4,5,0 widget 1"},
        {8, "0,0", "widget='slider'><a min='-1.9,2x' max='7' clamp='ON'/>",
         "34" + zero + " min -1,2,0,0 max 7,7,0,0 clamp widget 1"},
        {0, "0", "widget='slider'><a clamp='yes' max='1e1'/>", "17" + zero + " max 10,0,0,0 widget 1"},
        {0, "0", "widget='slider'><!-- c --><a min='1'/>", "17" + zero + " widget 1"},
        {0, "0", "widget='slider'>text<a min='1'/>", "17" + zero + " widget 1"},
        // Items stand at their values.
        {4, "0", combo(item("2") + "<x/>" + item("0") + item("3")),
         "33" + zero + " widget 6 combo \"t0\" \"-\" \"t2\" \"t3\""},
        {4, "0", combo(item("1") + item("2")), "33" + zero + " widget 6 combo \"-\" \"t1\" \"t2\""},
        {4, "0", combo(item("40")), "33" + zero + " widget 6 combo" + fillers(36)},
        {4, "0", combo(item("0") + "<guicomboboxitem value='0' text='again'/>"),
         "33" + zero + " widget 6 combo \"t0\"" + fillers(35)},
        {4, "0", combo("<guicomboboxitem text='no value'/>" + item("35")),
         "33" + zero + " widget 6 combo" + fillers(35) + " \"t35\""},
        {4, "0", combo("<guicomboboxitem value='0'/>" + item("1") + item("-1")),
         "33" + zero + " widget 6 combo \"-\" \"t1\"" + fillers(34)},
        {4, "0", combo(""), "33" + zero + " widget 6 combo"},
        {1, "0,0", combo(item("0")), "18" + zero + " widget 6 \"t0\""},
    };
    std::string inputs = inputTag("picture", 5, "") + "><inputgui widget='image'/></input>";
    for (const Case& each : cases) {
        inputs += inputTag(std::to_string(&each - cases), each.type, each.defaultValue) + ">" +
                  (each.gui.empty() ? "" : "<inputgui " + each.gui + "</inputgui>") + "</input>";
    }
    const auto material =
        createSubstance(packageOf("bottom", outputs(), inputs), packageOf("top", outputs(), ""));
    ASSERT_TRUE(material);
    EXPECT_EQ(material->numInputs(), static_cast<int>(std::size(cases)));
    EXPECT_EQ(material->numOutputs(), 0);
    EXPECT_FALSE(material->isModified());
    for (const Case& each : cases) {
        const std::string identifier = std::to_string(&each - cases);
        EXPECT_EQ(inputText(*material->getInput(identifier.c_str())), identifier + " " + each.expected);
    }
}

TEST(CreateSubstance, TakesTheStackedGraph) {
    std::string bottomInputs = inputTag("same", 0, "1") + "/>";
    bottomInputs += inputTag("b", 4, "2") + "/>";
    const auto bottom = packageOf("bottom", outputs(), bottomInputs);
    const auto top = packageOf("top", outputs(), inputTag("same", 4, "3") + "/>");
    const auto material = createSubstance(bottom, top);
    ASSERT_TRUE(material);
    const SubstanceAir::GraphDesc& graph = material->getPackageStackDesc()->graphs().at(0);
    EXPECT_EQ(material->getGraphInstances().size(), 1u);
    EXPECT_STREQ(material->getPackageURL().asChar(), graph.packageUrl.c_str());
    EXPECT_STREQ(material->getLabel().asMultibyte().asChar(), graph.label.c_str());
    const kv::vector<kvString::CString> ids{"same", "b", "same"};
    EXPECT_EQ(material->getInputIds(), ids);
    EXPECT_EQ(material->getInput("same")->getType(), TypeInt1);
    EXPECT_EQ(material->numReferences(), 1);
}

TEST(CreateSubstance, NeedsTwoGraphs) {
    const auto good = packageOf("good", outputs(), "");
    const kv::vector<char> unreadable{'x'};
    const auto noOutput = packageOf("empty", "", "");
    for (const auto& bad : {kv::vector<char>(), unreadable, noOutput}) {
        EXPECT_FALSE(createSubstance(good, bad));
        EXPECT_FALSE(createSubstance(bad, good));
    }
    SubstanceAir::PackageDesc package(good.data(), good.size(), nullptr);
    EXPECT_FALSE(createSubstance(&package, nullptr));
    EXPECT_FALSE(createSubstance(nullptr, &package));
}

} // namespace

} // namespace kvSubstance
