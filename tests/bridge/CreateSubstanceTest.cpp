#include "framework/description/PackageDesc.h"
#include "framework/render/PackageStackDesc.h"
#include "tests/bridge/TestPackages.h"
#include "tests/material/ModelText.h"

#include <gtest/gtest.h>

namespace {

using namespace kvSubstance;

std::string combo(const std::string& items) {
    return "widget='combobox'><a/><guicombobox>" + items + "</guicombobox>";
}

std::string item(const char* value) {
    return std::string("<guicomboboxitem value='") + value + "' text='t" + value + "'/>";
}

std::string fillers(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += " -";
    return text;
}

TEST(CreateSubstance, InputsByTheirGui) {
    const struct {
        int type;
        std::string gui; // attributes and children of the "inputgui" element
        std::string hostType, expected;
    } cases[] = {
        {0, "label='A'><a min='1'/>", "17", ""},
        {0, "widget='Slider' label='A'><a min='1'/>", "17", ""},
        {0, "widget='slider' label='A&amp;\xC3\xA9' description='D'>", "17",
         " widget 1 \"A&\xC3\xA9\" described \"D\""},
        {1, "widget='angle'>", "18", " widget 2"},
        {4, "widget='togglebutton'>", "33", " widget 3"},
        {3, "widget='color'>", "20", " widget 4"},
        {0, "widget='image'>", "17", " widget 5"},
        // One number stands for all, and a wrong count hands on what was there before.
        {2, "widget='slider'><a min='0.5'/>", "19", " min 0.5,0.5,0.5,0 widget 1"},
        {2, "widget='slider'><a min='3,4,5' max='1,2' step=''/>", "19",
         " min 3,4,5,0 max 3,4,5,0 step 3,4,5,0 widget 1"},
        {8, "widget='slider'><a min='-1.9,2x' max='7' clamp='ON'/>", "34",
         " min -1,2,0,0 max 7,7,0,0 clamp widget 1"},
        {0, "widget='slider'><a clamp='yes' max='1e1'/>", "17", " max 10,0,0,0 widget 1"},
        {0, "widget='slider'><!-- c --><a min='1'/>", "17", " widget 1"},
        // Items stand at their values.
        {4, combo(item("2") + "<x/>" + item("0") + item("3")), "33", " widget 6 combo t0 - t2 t3"},
        {4, combo(item("40")), "33", " widget 6 combo" + fillers(36)},
        {4, combo(item("0") + "<guicomboboxitem value='0' text='again'/>"), "33",
         " widget 6 combo t0" + fillers(35)},
        {4, combo("<guicomboboxitem text='no value'/>" + item("35")), "33",
         " widget 6 combo" + fillers(35) + " t35"},
        {4, combo("<guicomboboxitem value='0'/>" + item("1") + item("-1")), "33",
         " widget 6 combo - t1" + fillers(34)},
        {1, combo(item("0")), "18", " widget 6 t0"},
    };
    std::string inputs = inputTag("picture", 5, "") + "/>" + inputTag("values", 10, "1,-2,3,4") + "/>";
    std::string expected = "values 36 = 1,-2,3,4 default 1,-2,3,4\n";
    for (const auto& each : cases) {
        const std::string identifier = std::to_string(&each - cases);
        inputs += inputTag(identifier, each.type, "") + "><inputgui " + each.gui + "</inputgui></input>";
        expected += identifier + " " + each.hostType + " = 0,0,0,0 default 0,0,0,0" + each.expected + "\n";
    }
    const std::string output = outputTag(packages::freshUids(1), "out");
    const auto material = createSubstance(plainPackage(), packageOf("top", output, inputs));
    ASSERT_TRUE(material);
    const SubstanceAir::GraphDesc& graph = material->getPackageStackDesc()->graphs().at(0);
    EXPECT_STREQ(material->getPackageURL().asChar(), graph.packageUrl.c_str());
    EXPECT_STREQ(material->getLabel().asMultibyte().asChar(), graph.label.c_str());
    EXPECT_TRUE(material->numOutputs() == 0 && material->numReferences() == 1 && !material->isModified());
    std::string told;
    for (const kvString::CString& identifier : material->getInputIds())
        told += inputText(*material->getInput(identifier)) + "\n";
    EXPECT_EQ(told, expected);
}

TEST(CreateSubstance, NeedsTwoGraphs) {
    const auto good = plainPackage();
    for (const auto& bad : {kv::vector<char>(), kv::vector<char>{'x'}, packageOf("empty", "", "")})
        EXPECT_FALSE(createSubstance(good, bad) || createSubstance(bad, good));
    SubstanceAir::PackageDesc package(good.data(), good.size(), nullptr);
    EXPECT_FALSE(createSubstance(&package, nullptr) || createSubstance(nullptr, &package));
}

// The graph that its description announces has no package any more once the next one is there.
TEST(CreateSubstance, WithoutAStackThereIsNothingInIt) {
    const std::string graph = "<outputs>" + outputTag(packages::freshUids(1), "Output") + "</outputs>" +
                              "<inputs>" + inputTag("a", 0, "1") + "/></inputs>";
    const std::string description = packages::descriptionOf(
        std::to_string(packages::freshUids(1)), "pkg:/a", graph + "</graph><graph pkgurl='pkg:/b'>" + graph);
    const auto material =
        createSubstance(hosting::content(packages::bytes(description, "two")), plainPackage());
    ASSERT_TRUE(material);
    EXPECT_TRUE(material->getGraphInstances().empty() && material->getInputIds().empty());
    EXPECT_TRUE(material->getPackageURL().empty() && material->getLabel() == kvString::IString());
    EXPECT_FALSE(getTextureFromSubstance(material.get()));
}

} // namespace
