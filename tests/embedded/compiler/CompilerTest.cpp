#include "embedded/compiler/Compiler.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"
#include "tests/embedded/program/ProgramText.h"

#include <gtest/gtest.h>

namespace embedded {
namespace {

struct Compiled {
    std::string description;
    std::string program;
};

// Fails unless the source compiles without a word.
Compiled compileClean(const std::string& source) {
    const CompileResult result = compilePackage(source);
    for (const Diagnostic& diagnostic : result.diagnostics) ADD_FAILURE() << toString(diagnostic, "source");
    const auto package = decodePackage(result.package.data(), result.package.size());
    if (!package) return {};
    const auto program = decodeAssembly(package->assembly.data(), package->assembly.size());
    EXPECT_TRUE(program);
    return {package->description, program ? toText(*program) : std::string()};
}

const std::string goodSource = R"(<?xml version="1.0" encoding="UTF-8"?>
<package>
  <!-- Nodes in any order. -->
  <graph url="pkg://test" label="Test &amp; more">
    <preset label="Red" description="All red"><set input="tint" value="#ff0000"/><set input="mode" value="2"/></preset>
    <node name="result" kind="blend" background="under" foreground="plain" mode="{mode}" opacity="{amount} * 0.5 + 0.25"/>
    <node name="under" kind="imageInput" image="{diffuse}" fallback="#ffffff"/>
    <node name="plain" kind="uniform" colour="colour" value="{tint}" encoding="srgb"/>
    <node name="noise" kind="fbm" octaves="3"/>
    <input identifier="$resolution" type="integer2" default="9,9"/>
    <input identifier="diffuse" type="image" label="Below"/>
    <input identifier="tint" type="float3" default="#336699" description="A &quot;colour&quot;"/>
    <input identifier="amount" type="float" default="0.5" min="0" max="1" step="0.01" clamp="off"/>
    <input identifier="mode" type="integer" label="Mode"><item value="0" text="Plain"/><item value="2" text="Bright"/></input>
    <output identifier="colour" node="result" label="Colour" mipmaps="5"/>
    <output identifier="height" node="noise" format="gray16"/>
  </graph>
</package>
)";

TEST(Compiler, Description) {
    EXPECT_EQ(compileClean(goodSource).description, R"(<?xml version="1.0" encoding="UTF-8" ?>
<sbsdescription asmuid="837819025">
  <graphs count="1">
    <graph pkgurl="pkg://test" label="Test &amp; more">
      <outputs count="2">
        <output uid="2356507600" identifier="colour" format="32" mipmaps="5">
          <outputgui label="Colour" />
        </output>
        <output uid="880458751" identifier="height" format="66" mipmaps="1">
          <outputgui label="height">
            <channels>
              <channel names="height" />
            </channels>
          </outputgui>
        </output>
      </outputs>
      <inputs count="5">
        <input uid="4165606333" identifier="$resolution" type="8" default="9,9" min="0,0" max="14,14" alteroutputs="2356507600,880458751">
          <inputgui label="$resolution" />
        </input>
        <input uid="1295450921" identifier="diffuse" type="5" alteroutputs="2356507600">
          <inputgui label="Below" widget="image" />
        </input>
        <input uid="852714736" identifier="tint" type="2" default="0.2,0.4,0.6" min="0,0,0" max="1,1,1" alteroutputs="2356507600">
          <inputgui label="tint" description='A &quot;colour&quot;' widget="color">
            <guicolor min="0,0,0" max="1,1,1" clamp="on" />
          </inputgui>
        </input>
        <input uid="2276376765" identifier="amount" type="0" default="0.5" min="0" max="1" alteroutputs="2356507600">
          <inputgui label="amount" widget="slider">
            <guislider min="0" max="1" step="0.01" clamp="off" />
          </inputgui>
        </input>
        <input uid="1390695982" identifier="mode" type="4" default="0" min="0" max="2" alteroutputs="2356507600">
          <inputgui label="Mode" widget="combobox">
            <guicombobox min="0" max="2" clamp="on">
              <guicomboboxitem value="0" text="Plain" />
              <guicomboboxitem value="2" text="Bright" />
            </guicombobox>
          </inputgui>
        </input>
      </inputs>
      <sbspresets>
        <sbspreset pkgurl="pkg://test" label="Red" description="All red">
          <presetinput uid="852714736" identifier="tint" type="2" value="1,0,0" />
          <presetinput uid="1390695982" identifier="mode" type="4" value="2" />
        </sbspreset>
      </sbspresets>
    </graph>
  </graphs>
</sbsdescription>
)");
}

TEST(Compiler, StatesWhetherOutputsTile) {
    const CompileResult result = compilePackage(R"(<package>
  <graph url="pkg://a">
    <node name="sun" kind="wave" layout="radial"/>
    <node name="soft" kind="blur" source="sun"/>
    <output identifier="rays" node="soft"/>
  </graph>
  <graph url="pkg://b">
    <input identifier="unused" type="float" min="0" max="1"/>
    <input identifier="first" type="image"/><input identifier="second" type="image"/>
    <node name="both" kind="blend" background="one" foreground="two"/>
    <node name="two" kind="imageInput" image="{second}"/>
    <node name="one" kind="imageInput" image="{first}"/>
    <output identifier="mixed" node="both"/><output identifier="single" node="two"/>
  </graph>
</package>)");
    std::string text;
    for (const OutputStatement& statement : result.outputs)
        text += statement.graph + " " + toString(statement) + "\n";
    EXPECT_EQ(text, "pkg://a output rays: may not tile: node \"sun\" (wave), parameter layout\n"
                    "pkg://b output mixed: tiles if the images given to first, second do\n"
                    "pkg://b output single: tiles if the image given to second does\n");
}

TEST(Compiler, Program) {
    EXPECT_EQ(compileClean(goodSource).program, R"(input 4165606333 role 1 8:9,9
input 1295450921 role 0 5:
input 852714736 role 0 2:0.2,0.4,0.6
input 2276376765 role 0 0:0.5
input 1390695982 role 0 4:0
node imageInput [ -1 ] {1} 4:1 3:1,1,1,1 resolution {0} seed 4:0
node uniform [ ] 4:1 {2} 4:1 resolution {0} seed 4:0
node blend [ 0 1 -1 ] {4} {3}*0.5+0.25 resolution {0} seed 4:0
node fbm [ ] 4:0 8:4,4 4:3 0:0.5 4:0 resolution {0} seed 4:0
output 2356507600 node 2 format 32 mipmaps 5
output 880458751 node 3 format 66 mipmaps 1
)");
}

TEST(Compiler, AllErrorsInOneGo) {
    const CompileResult result = compilePackage(R"(<package versoin="1">
<graph url="pkg://broken wall" label="Broken">
<input identifier="$resolution" type="integer"/>
<input identifier="$time" type="float" min="0" max="1"/>
<input identifier="a" type="flaot"/>
<input identifier="b" type="float" default="1,5" min="0" max="1" stepp="2"/>
<input identifier="c" type="float" default="3" min="0" max="1" clamp="yes"/>
<input identifier="f" type="integer" default="2">
<item value="0" text="x"/>
<item value="0" text="y"/>
</input>
<input identifier="amount" type="float" min="1" max="0"/>
<input identifier="amount" type="float" min="0" max="1"/>
<node name="n1" kind="fbn"/>
<node name="n2" kind="blend" background="n1" opacity="2" mask="n9"/>
<node name="n3" kind="blur" source="n4" sigmma="0.1"/>
<node name="n4" kind="blur" source="n3" sigma="{amont}"/>
<node name="n5" kind="blend" background="n1" foreground="n1" mode="multpily" opacity="{h}"/>
<node name="n6" kind="imageInput"/>
<node name="n6" kind="fbm" octaves="{amount}" gain="0.5x" repeats="{f} * 2" seed="{f"/>
<output identifier="out" node="n7" usage="difuse" format="rgb8" mipmaps="0"/>
<output node="n5"/>
<preset><set input="amuont" value="1"/>
<set input="f" value="7"/></preset>
<thing/></graph>
<graph url="pkg://empty"/>
<graph url="pkg://empty"><node name="n" kind="uniform"/><output identifier="o" node="n"/></graph></package>)");
    EXPECT_TRUE(result.package.empty());
    std::string lines;
    for (const Diagnostic& diagnostic : result.diagnostics)
        lines += std::to_string(diagnostic.place.line) + " ";
    EXPECT_EQ(lines,
              "1 2 3 4 5 6 6 7 7 8 10 12 13 14 15 15 15 16 16 17 18 18 19 20 20 20 20 20 21 21 21 21 22 23 "
              "23 24 25 26 27 ");
}

TEST(Compiler, WarningsLeaveAPackage) {
    const CompileResult result = compilePackage(R"(<package><graph url="pkg://w">
<input identifier="unused" type="float" min="0" max="1"/>
<input identifier="tint" type="float3" default="#ffffff"/>
<node name="idle" kind="fbm"/>
<node name="plain" kind="uniform" value="{tint}"/>
<output identifier="o" node="plain"/></graph></package>)");
    EXPECT_FALSE(result.package.empty());
    std::string text;
    for (const Diagnostic& diagnostic : result.diagnostics)
        text += std::to_string(diagnostic.place.line) + ":" + std::to_string(diagnostic.place.column) + " " +
                diagnostic.element + "\n";
    EXPECT_EQ(text, "2:1 input \"unused\"\n4:1 node \"idle\"\n5:35 node \"plain\", attribute value\n");
}

TEST(Compiler, WhatIsNoSource) {
    std::string deeplyNested;
    for (int i = 0; i < 100000; ++i) deeplyNested += "<package>";
    const std::string sources[] = {
        "<sbsdescription/>",
        "<package/>",
        std::string("<package>\0</package>", 20),
        "<package><!-- \xE4 --></package>", // Latin-1
        deeplyNested,
        std::string(std::size_t{17} << 20, ' '),
    };
    for (const std::string& source : sources) {
        const CompileResult result = compilePackage(source);
        EXPECT_TRUE(result.package.empty()) << source.substr(0, 50);
        EXPECT_FALSE(result.diagnostics.empty()) << source.substr(0, 50);
    }
}

} // namespace
} // namespace embedded
