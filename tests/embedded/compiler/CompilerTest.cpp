#include "embedded/compiler/Compiler.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"
#include "tests/ReadFile.h"
#include "tests/embedded/program/ProgramText.h"

#include <gtest/gtest.h>

namespace embedded {
namespace {

const std::filesystem::path folder = KVSUBSTANCE_COMPILER_TESTS;

TEST(Compiler, DescriptionAndProgram) {
    const CompileResult result = compilePackage(readFile(folder / "good.xml"));
    for (const Diagnostic& diagnostic : result.diagnostics) ADD_FAILURE() << toString(diagnostic, "good.xml");
    const auto package = decodePackage(result.package.data(), result.package.size());
    ASSERT_TRUE(package);
    EXPECT_EQ(package->description, readFile(folder / "good.description.xml"));
    const auto program = decodeAssembly(package->assembly.data(), package->assembly.size());
    ASSERT_TRUE(program);
    EXPECT_EQ(toText(*program), readFile(folder / "good.program.txt"));
}

TEST(Compiler, AllErrorsInOneGo) {
    const CompileResult result = compilePackage(readFile(folder / "broken.xml"));
    EXPECT_TRUE(result.package.empty());
    std::string lines;
    for (const Diagnostic& diagnostic : result.diagnostics)
        lines += std::to_string(diagnostic.place.line) + " ";
    EXPECT_EQ(lines,
              "1 2 3 4 5 6 6 7 7 8 10 12 13 14 15 15 15 16 16 17 18 18 19 20 20 20 20 20 21 21 21 21 22 23 "
              "23 24 25 26 27 ");
}

TEST(Compiler, WarningsAndWhetherOutputsTile) {
    const CompileResult result = compilePackage(R"(<package><graph url="pkg://a">
<input identifier="unused" type="float" min="0" max="1"/>
<input identifier="tint" type="float3" default="#ffffff"/>
<node name="idle" kind="fbm"/>
<node name="plain" kind="uniform" value="{tint}"/>
<node name="sun" kind="wave" layout="radial"/><node name="soft" kind="blur" source="sun"/>
<output identifier="o" node="plain"/><output identifier="rays" node="soft"/></graph>
<graph url="pkg://b">
<input identifier="first" type="image"/><input identifier="second" type="image"/>
<node name="both" kind="blend" background="one" foreground="two"/>
<node name="two" kind="imageInput" image="{second}"/><node name="one" kind="imageInput" image="{first}"/>
<output identifier="mixed" node="both"/><output identifier="single" node="two"/></graph></package>)");
    EXPECT_FALSE(result.package.empty());
    std::string text;
    for (const auto& [severity, place, element, message] : result.diagnostics)
        text += std::to_string(place.line) + ":" + std::to_string(place.column) + " " + element + "\n";
    for (const OutputStatement& statement : result.outputs)
        text += statement.graph + " " + toString(statement) + "\n";
    EXPECT_EQ(text, "2:1 input \"unused\"\n4:1 node \"idle\"\n5:35 node \"plain\", attribute value\n"
                    "pkg://a output o: tiles\n"
                    "pkg://a output rays: may not tile: node \"sun\" (wave), parameter layout\n"
                    "pkg://b output mixed: tiles if the images given to first, second do\n"
                    "pkg://b output single: tiles if the image given to second does\n");
}

TEST(Compiler, WhatIsNoSource) {
    std::string deeplyNested;
    for (int i = 0; i < 100000; ++i) deeplyNested += "<package>";
    // In front of the elements stands what the parser reads in its own way.
    for (const char* const start :
         {"<?xml version=\"><!--\"?>", "<!--><![CDATA[ -->", "<1 a=\">", "<p b=\f\"><!--\">"})
        EXPECT_TRUE(compilePackage(start + deeplyNested).package.empty()) << start;
    for (const std::string& source : {std::string("<sbsdescription/>"), std::string("<package/>"),
                                      readFile(folder / "good.xml") + "</package> a slip of the pen",
                                      std::string("<package>\0</package>", 20),
                                      std::string("<package><!-- \xE4 --></package>"), // Latin-1
                                      deeplyNested, std::string(std::size_t{17} << 20, ' ')}) {
        const CompileResult result = compilePackage(source);
        EXPECT_TRUE(result.package.empty()) << source.substr(0, 50);
        EXPECT_FALSE(result.diagnostics.empty()) << source.substr(0, 50);
    }
}

} // namespace
} // namespace embedded
