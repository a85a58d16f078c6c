// Whole packages, through the linker, and their registration.
#include "framework/render/GraphInstance.h"
#include "tests/framework/description/PackageFixture.h"

using namespace SubstanceAir;
using descriptiontext::print;

namespace {

const char* const bricks = R"(<?xml version="1.0"?><sbsdescription asmuid="1001"><global/><graphs count="3">
<graph pkgurl="pkg://bricks" label="Bricks"><outputs count="-4">
 <output uid="30" identifier="normal" format=" 12b" mipmaps="3"><outputgui label="Normal"><channels>
  <channel names="normal"/><channel names="height"/></channels></outputgui></output>
 <output uid="10" identifier="first"/><output uid="20" identifier="mask" format="28" mipmaps="3b">
  <!--outputgui--><outputgui><channels><channel names="Roughness"/></channels></outputgui></output>
 <output uid="10" identifier="second"/></outputs>
<inputs count="999999999">
 <input uid="7" identifier="tint" type="2" default="1,0.5,0" max="1,1,1" alteroutputs="30,10,99">
  <inputgui label="Tint" widget="color"><guicolor/></inputgui></input>
 <input uid="6" identifier="dropped" type="6" alteroutputs="20"/>
 <input uid="5" identifier="$resolution" type="8" default="9,9" max="14,14" alteroutputs="10,20,30"/>
 <input uid="7" identifier="again" type="5" alteroutputs="30"/></inputs>
<sbspresets><sbspreset pkgurl="pkg://other" label="Old" description="Weathered">
 <presetinput uid="5" identifier="x" type="0" value="8,8"/>
 <presetinput uid="99" identifier="x" type="0" value="1"/></sbspreset></sbspresets></graph>
<graph pkgurl="pkg://empty"><outputs/><inputs><input uid="1" type="5"/></inputs></graph>
<graph pkgurl="pkg://plain"><sbspresets/><outputs><output uid="40" format="9" mipmaps="2"/></outputs></graph>
</graphs></sbsdescription>)";

const char* const bricksText = R"(graph pkg://bricks 'Bricks'
output 10 first '' format 0 mipmaps 0 diffuse altered by 5,7.
output 10 second '' format 0 mipmaps 0 diffuse altered by .
output 20 mask '' format 28 mipmaps 0 diffuse altered by 5.
output 30 normal 'Normal' format 12 mipmaps 3 normal altered by 5,7,7.
input 5 $resolution '$resolution' type 8 9,9 in 0,0 to 14,14 system alters 10,20,30.
input 7 tint 'Tint' type 2 1,0.5,0 in 0,0,0 to 1,1,1 alters 10,30.<inputgui label="Tint" widget="color"><guicolor /></inputgui>
input 7 again 'again' type 5 image alters 30.
preset pkg://bricks 'Old' 'Weathered'
  5 $resolution type 8 = 8,8.
  99  type 65535 = 1.
graph pkg://plain ''
output 40  '' format 9 mipmaps 2 diffuse altered by .
)";

class Packages : public PackageFixture {};

} // namespace

TEST_F(Packages, ReadADescription) {
    const OutputFormatOptions options{AllFormatClasses, 0};
    const auto package = load(bricks, &options);
    EXPECT_EQ(package->asmUid(), 1001u);
    ASSERT_EQ(package->graphs().size(), 2u);
    EXPECT_EQ(print(package->graphs()[0]) + print(package->graphs()[1]), bricksText);
    EXPECT_EQ(package->graphs()[0].parent, package.get());

    std::vector<boost::shared_ptr<GraphInstance>> instances;
    instantiateGraphs(instances, *package);
    ASSERT_EQ(instances.size(), 2u);
    EXPECT_EQ(&instances[1]->desc, &package->graphs()[1]);
}

TEST_F(Packages, FormatsAndMipmapsGoByTheOptions) {
    std::string outputs;
    for (const int format : {0, 4, 8, 12, 16, 20, 24, 28, 1, 5, 9, 13, 17, 2})
        outputs += "<output uid='" + std::to_string(outputs.size()) + "' format='" + std::to_string(format) +
                   "' mipmaps='3'/>";
    const struct {
        OutputFormatOptions options;
        std::string formats; // and the mipmaps
    } cases[] = {
        {{AllFormatClasses, 0}, "0 4 8 12 16 20 24 28 1 5 9 13 17 2 x3"},
        {{0, 2}, "0 4 8 12 16 20 24 28 1 5 9 13 17 2 x1"},
        {{1, 1}, "0 4 8 0 0 0 0 0 0 0 0 0 0 2 x0"},
        {{2 + 8, 1}, "12 12 12 12 28 28 28 28 12 12 12 12 12 2 x0"},
        {{16 + 32 + 64, 2}, "17 17 17 1 17 17 17 1 1 5 9 13 17 2 x1"},
    };
    for (const auto& [options, formats] : cases) {
        const auto package = load("<sbsdescription asmuid='1004'><graphs><graph pkgurl='a'><outputs>" +
                                      outputs + "</outputs></graph></graphs></sbsdescription>",
                                  &options);
        std::string text;
        for (const OutputDesc& output : package->graphs().at(0).outputs)
            text += std::to_string(output.format) + " ";
        EXPECT_EQ(text + "x" + std::to_string(package->graphs()[0].outputs[0].mipmaps), formats);
    }
}

TEST_F(Packages, ABrokenDescriptionGivesNoGraphsAndIsNotRegistered) {
    for (const char* const xml :
         {"text", "<sbsdescription><graphs/></sbsdescription>", "<other asmuid='1002'><graphs/></other>",
          "<sbsdescription asmuid='1002'><!--graphs--></sbsdescription>"}) {
        EXPECT_TRUE(load(xml)->graphs().empty()) << xml;
        EXPECT_FALSE(isTaken(1002)) << xml;
    }
    EXPECT_EQ(load(graphsXml("12ab", "", 1))->asmUid(), 0u);
    EXPECT_TRUE(PackageDesc(nullptr, 0, nullptr).graphs().empty());
}

TEST_F(Packages, GraphsBeyondTheCountLoseWhatCopiesLose) {
    const auto complete = [](const std::string& count, int graphs) {
        std::string text;
        const auto package = load(graphsXml("1003", count, graphs));
        for (const GraphDesc& graph : package->graphs()) {
            EXPECT_EQ(graph.outputs.size() + graph.inputs.size(), 2u);
            EXPECT_EQ(graph.presets.empty(), graph.parent == nullptr);
            text += graph.packageUrl + (graph.parent ? " " : "- ");
        }
        return text;
    };
    EXPECT_EQ(complete(" count='3'", 3), "1 2 3 ");
    EXPECT_EQ(complete(" count='1'", 2), "1- 2 ");
    EXPECT_EQ(complete("", 3), "1- 2- 3 ");
    EXPECT_EQ(complete(" count='-1'", 2), "1- 2 ");
}

TEST_F(Packages, CopiesOfAGraphOwnTheirInputsAndTakeNeitherPresetsNorParent) {
    const auto package = load(bricks);
    const GraphDesc& graph = package->graphs()[0];
    GraphDesc copy = graph;
    EXPECT_NE(copy.inputs[0], graph.inputs[0]);
    EXPECT_EQ(copy.parent, nullptr);
    EXPECT_EQ(print(copy), print(graph).substr(0, print(graph).find("preset ")));

    copy.parent = package.get();
    copy.presets.resize(2);
    copy = package->graphs()[1];
    EXPECT_EQ(copy.packageUrl, "pkg://plain");
    EXPECT_EQ(copy.parent, package.get());
    EXPECT_EQ(copy.presets.size(), 2u);
}
