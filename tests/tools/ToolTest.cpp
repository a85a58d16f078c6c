// Runs the built tool as a process.

#include "tests/tools/ToolFixture.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>

namespace {

TEST_F(Tool, CompileReportsEveryErrorWithItsPlaceAndWritesNothing) {
    writeFile("wrong.xml", "<package>\n  <graph url=\"pkg://w\">\n    <node name=\"a\" kind=\"unifrom\"/>\n"
                           "    <output identifier=\"o\" node=\"b\"/>\n  </graph>\n</package>\n");
    writeFile("old.kvpkg", "old");
    const Outcome outcome = run("compile wrong.xml -o old.kvpkg");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.error.find("wrong.xml:3:"), std::string::npos) << outcome.error;
    EXPECT_NE(outcome.error.find("wrong.xml:4:"), std::string::npos) << outcome.error;
    EXPECT_EQ(readFile(folder / "old.kvpkg"), "old");
}

TEST_F(Tool, InfoTellsAllThatAPackageDescribes) {
    const Outcome outcome = run("info bottom.kvpkg --json");
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const auto graph = nlohmann::json::parse(outcome.out)["graphs"][0];
    std::string printed;
    for (const auto& input : graph["inputs"])
        printed += input["identifier"].get<std::string>() + " " + input["type"].get<std::string>() + " " +
                   input["widget"].get<std::string>() + " " + input["default"].dump() + input["min"].dump() +
                   input["max"].dump() + input["step"].dump() + input["alters"].dump() + "\n";
    EXPECT_EQ(printed, "$resolution integer2  [4,4][][][][\"basecolor\",\"roughness\"]\n"
                       "level float slider [0.5][0.0][1.0][0.1][\"basecolor\",\"roughness\"]\n"
                       "look integer combobox [0][0][1][][\"basecolor\"]\n"
                       "tint float3 color [1.0,0.0,0.0][0.0,0.0,0.0][1.0,1.0,1.0][][\"basecolor\"]\n");
    EXPECT_EQ(graph["inputs"][2]["comboItems"][1], nlohmann::json::parse(R"({"value":1,"text":"Noisy"})"));
    EXPECT_EQ(graph["outputs"][0]["format"], "srgb8");
    EXPECT_EQ(graph["outputs"][1]["usage"], "roughness");
    EXPECT_EQ(graph["presets"][0]["values"]["tint"], "0,0,1");

    const std::string text = run("info bottom.kvpkg").out;
    for (const char* const part :
         {"\"Bottom\"", "0 to 1 by 0.1", "1 Noisy", "srgb8", "\"Blue\"", "tint = 0,0,1"})
        EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text;
}

TEST_F(Tool, RendersOnePackageOrTwo) {
    const Pixels red = render("bottom.kvpkg --set level=0");
    EXPECT_EQ(red.width, 16u);
    ASSERT_EQ(red.rgba.size(), 16u * 16 * 4);
    EXPECT_EQ(std::vector<unsigned char>(red.rgba.begin(), red.rgba.begin() + 4),
              (std::vector<unsigned char>{255, 0, 0, 255}));

    EXPECT_EQ(render("bottom.kvpkg top.kvpkg --set level=0").rgba, red.rgba);
    EXPECT_EQ(render("bottom.kvpkg top.kvpkg --set amount=1").rgba,
              std::vector<unsigned char>(16 * 16 * 4, 255));

    const Pixels wide = render("bottom.kvpkg top.kvpkg --size 64x8");
    EXPECT_EQ(wide.width, 64u);
    EXPECT_EQ(wide.height, 8u);

    EXPECT_EQ(render("bottom.kvpkg --set look=noisy").rgba, render("bottom.kvpkg --set look=1").rgba);
    EXPECT_EQ(render("bottom.kvpkg --set tint=#00ff00").rgba, render("bottom.kvpkg --set tint=0,1,0").rgba);
    EXPECT_EQ(run("render bottom.kvpkg top.kvpkg -o rendered.png --explain").out,
              R"(1 connection from bottom.kvpkg to top.kvpkg
  output     usage    feeds input  connected by
  basecolor  diffuse  diffuse      "diffuse"
  nothing feeds input height
  input $resolution is one for both
)");

    // A measure is shown as it is, and another usage does not stand in for it.
    EXPECT_EQ(render("bottom.kvpkg --channel roughness --set level=0.2").rgba[0], 51);
    EXPECT_EQ(run("render bottom.kvpkg --channel glossiness -o none.png").status, 1);
}

TEST_F(Tool, FailedRenderSaysWhyKeepsTheOldPictureAndLeavesNothingBehind) {
    writeFile("rendered.png", "old");
    writeFile("noise.kvpkg", "no package");
    compilePackage("other", R"(<package><graph url="pkg://other"><node name="n" kind="uniform"/>
                               <output identifier="Outptu" node="n"/></graph></package>)");
    fs::create_directory(folder / "folder.png");
    const std::map<std::string, std::string> partsOfMessages{
        {"noise.kvpkg -o rendered.png", "noise.kvpkg: not a package"},
        {"bottom.xml -o rendered.png", "kvsubstance compile"},
        {"missing.kvpkg -o rendered.png", "missing.kvpkg: cannot be read"},
        {"bottom.kvpkg other.kvpkg -o rendered.png", "\"Outptu\""},
        {"bottom.kvpkg -o folder.png", "folder"},
        {"bottom.kvpkg -o nowhere/rendered.png", "nowhere"},
        {"bottom.kvpkg -o rendered.png --set levle=1", "\"level\""},
        {"bottom.kvpkg -o rendered.png --set level=high", "expected a number"},
        {"bottom.kvpkg -o rendered.png --set level=2", "up to 1"},
        {"bottom.kvpkg -o rendered.png --set tint=1,2", "3 numbers"},
        {"bottom.kvpkg -o rendered.png --set look=Noisi", "1 \"Noisy\""},
        {"bottom.kvpkg -o rendered.png --set look=0.5", "whole number"},
        {"bottom.kvpkg -o rendered.png --preset Bleu", "\"Blue\""}};
    for (const auto& [arguments, message] : partsOfMessages) {
        const Outcome outcome = run("render " + arguments);
        EXPECT_EQ(outcome.status, 1) << arguments;
        EXPECT_NE(outcome.error.find(message), std::string::npos) << outcome.error;
        EXPECT_EQ(readFile(folder / "rendered.png"), "old") << arguments;
    }
    for (const auto& entry : fs::directory_iterator(folder)) EXPECT_NE(entry.path().extension(), ".tmp");
}

TEST_F(Tool, BadUsageHasAStatusOfItsOwn) {
    for (const char* const arguments :
         {"", "rendr", "render", "render bottom.kvpkg", "render bottom.kvpkg -o a.png --size 100",
          "render bottom.kvpkg -o a.png --size 32768", "render bottom.kvpkg -o a.png --set level",
          "render bottom.kvpkg -o a.png --channel roughnes",
          "render bottom.kvpkg top.kvpkg -o a.png --channel roughness",
          "sweep bottom.kvpkg --vary level=0..1 -o a", "sheet -o a.png"})
        EXPECT_EQ(run(arguments).status, 2) << arguments;
    for (const char* const command : {"", "compile", "info", "render", "sweep", "sheet", "describe"})
        EXPECT_EQ(run(std::string(command) + " --help").status, 0) << command;
}

TEST_F(Tool, SavedStateGivesTheSamePixelsInAFreshProcess) {
    const Pixels saved =
        render("bottom.kvpkg top.kvpkg --set tint=0.1234567,0.7,0.3 --set level=0.3333333 --set look=1 "
               "--size 32 --save-state state.txt");
    const Pixels restored = render("bottom.kvpkg top.kvpkg --state state.txt");
    EXPECT_EQ(restored.width, 32u);
    EXPECT_EQ(restored.rgba, saved.rgba);
    EXPECT_NE(render("bottom.kvpkg top.kvpkg").rgba, saved.rgba);

    const Outcome foreign = run("render bottom.kvpkg --state state.txt -o a.png");
    EXPECT_EQ(foreign.status, 1);
    EXPECT_NE(foreign.error.find("state.txt:1:"), std::string::npos) << foreign.error;
}

TEST_F(Tool, PresetsOfBothPackages) {
    EXPECT_EQ(render("bottom.kvpkg top.kvpkg --preset Blue").rgba,
              render("bottom.kvpkg top.kvpkg --set tint=0,0,1").rgba);
    // The top's system input is the bottom's too.
    const Pixels snow = render("bottom.kvpkg top.kvpkg --preset top:Snow");
    EXPECT_EQ(snow.width, 8u);
    EXPECT_EQ(snow.rgba, std::vector<unsigned char>(8 * 8 * 4, 255));
}

TEST_F(Tool, SweepRendersAGridWithASheet) {
    const Outcome outcome =
        run("sweep bottom.kvpkg --vary level=0..1:2 --vary look=0..1:2 -o out/sweep --sheet sheet.png");
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(readPng(folder / "out/sweep/3_level=1_look=0.png").rgba,
              render("bottom.kvpkg --set level=1 --set look=0").rgba);
    EXPECT_NE(outcome.out.find("4/4 "), std::string::npos) << outcome.out;
    const Pixels sheet = readPng(folder / "sheet.png");
    EXPECT_GT(sheet.width, 2 * 256u);
    EXPECT_LT(sheet.width, 3 * 256u);

    EXPECT_EQ(run("sheet rendered.png sheet.png -o both.png").status, 0);
    EXPECT_GT(readPng(folder / "both.png").width, 2 * 256u);
    EXPECT_EQ(run("sheet bottom.kvpkg -o none.png").status, 1);
}

TEST_F(Tool, DescribesTheHostsModel) {
    const auto write = [this](const std::string& name, const std::string& inputs) {
        writeFile(name, R"(<sbsdescription content="full"><graphs count="1"><graph pkgurl="pkg:/d" label="D">
            <outputs><output uid="1" identifier="o" format="0" width="64" height="32" mipmaps="1"/></outputs>
            <inputs><input uid="2" identifier="i" )" +
                            inputs + "</inputs></graph></graphs></sbsdescription>");
    };
    write("good.xml", R"(type="0" default="0.1" alteroutputs="1">
        <inputgui widget="slider" label="I"><guislider min="0" max="2"/></inputgui></input>)");
    const Outcome good = run("describe good.xml --json");
    ASSERT_EQ(good.status, 0) << good.error;
    const auto input = nlohmann::json::parse(good.out)["inputs"][0];
    EXPECT_EQ(input["default"].dump() + input["max"].dump() + input["alters"].dump(), "[0.1][2.0][\"o\"]");

    write("bad.xml", "/>");
    const Outcome bad = run("describe bad.xml");
    EXPECT_EQ(bad.status, 1);
    EXPECT_NE(bad.error.find("input 1 needs the attribute \"type\""), std::string::npos) << bad.error;
}

TEST_F(Tool, InternationalFileNames) {
    const std::string name = "gr\xC3\xBCn \xE6\x9C\xA8"; // in no single code page but UTF-8
    fs::copy_file(folder / "bottom.kvpkg", folder / fs::u8path(name + ".kvpkg"));
    const Outcome outcome = run("render \"" + name + ".kvpkg\" -o \"" + name + ".png\"");
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_TRUE(fs::exists(folder / fs::u8path(name + ".png")));
    EXPECT_NE(run("info \"" + name + "\"").error.find(name), std::string::npos); // no such file
}

#if !defined(_WIN32)
// Each ends with status 1 and one line, and leaves what was there.
TEST_F(Tool, FilesThatCannotBeReadOrWrittenAreFailures) {
    writeFile("rendered.png", "old");
    const std::string tool = "\"" KVSUBSTANCE_TOOL "\" ";
    const std::string pipeWithoutReader = "mkfifo pipe && { (exec 4<pipe) & exec 5>pipe; wait; ";
    for (const std::string& command :
         {tool + "info bottom.kvpkg >/dev/full",                                     // a full disk
          "ulimit -f 1; " + tool + "render bottom.kvpkg --size 512 -o rendered.png", // a full disk, in effect
          tool + "render bottom.kvpkg -o /proc/rendered.png", // a folder that takes no files
          pipeWithoutReader + tool + "nodes >&5; }",          // a broken pipe
          tool + "info pipe", "cat bottom.kvpkg | " + tool + "info -",
          "cat bottom.kvpkg | " + tool + "info /dev/stdin"}) {
        const int status =
            std::system(("cd \"" + folder.string() + "\"; (" + command + ") 2>stderr.txt").c_str());
        const std::string error = readFile(folder / "stderr.txt");
        EXPECT_EQ(WEXITSTATUS(status), 1) << command;
        EXPECT_EQ(error.substr(0, 7), "error: ") << command << "\n" << error;
        EXPECT_EQ(std::count(error.begin(), error.end(), '\n'), 1) << command << "\n" << error;
    }
    EXPECT_EQ(readFile(folder / "rendered.png"), "old");
    for (const auto& entry : fs::directory_iterator(folder)) EXPECT_NE(entry.path().extension(), ".tmp");
}
#endif

} // namespace
