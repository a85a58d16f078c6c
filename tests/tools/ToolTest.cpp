// What the tool compiles, tells, renders and refuses.
#include "tests/tools/ToolFixture.h"

#include <nlohmann/json.hpp>

namespace {

TEST_F(Tool, CompileReportsEveryErrorWithItsPlaceAndWritesNothing) {
    write("wrong.xml", "<package>\n  <graph url=\"pkg://w\">\n    <node name=\"a\" kind=\"unifrom\"/>\n"
                       "    <output identifier=\"o\" node=\"b\"/>\n  </graph>\n</package>\n");
    write("old.kvpkg", "old");
    const Outcome outcome = run("compile wrong.xml -o old.kvpkg");
    EXPECT_EQ(outcome.status, 1);
    expectPart(outcome.error, "wrong.xml:3:");
    expectPart(outcome.error, "wrong.xml:4:");
    EXPECT_EQ(read("old.kvpkg"), "old");
}

TEST_F(Tool, InfoTellsAllThatAPackageDescribes) {
    EXPECT_EQ(run("info bottom.kvpkg").out, given("bottom.info.txt"));
    EXPECT_EQ(nlohmann::json::parse(run("info bottom.kvpkg --json").out),
              nlohmann::json::parse(given("bottom.info.json")));
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
    // The top's system input is the bottom's too.
    const Pixels snow = render("bottom.kvpkg top.kvpkg --preset top:Snow");
    EXPECT_EQ(snow.width, 8u);
    EXPECT_EQ(snow.rgba, std::vector<unsigned char>(8 * 8 * 4, 255));

    for (const auto& [one, other] :
         {std::pair{"bottom.kvpkg --set look=noisy", "bottom.kvpkg --set look=1"},
          {"bottom.kvpkg --set tint=#00ff00", "bottom.kvpkg --set tint=0,1,0"},
          {"bottom.kvpkg top.kvpkg --preset Blue", "bottom.kvpkg top.kvpkg --set tint=0,0,1"}})
        EXPECT_EQ(render(one).rgba, render(other).rgba) << one;
    EXPECT_EQ(run("render bottom.kvpkg top.kvpkg -o rendered.png --explain").out,
              R"(1 connection from bottom.kvpkg to top.kvpkg
  output     usage    feeds input  connected by
  basecolor  diffuse  diffuse      "diffuse"
  nothing feeds input height
  input $resolution is one for both
)");

    // A measure is shown as it is, and another usage does not stand in for it.
    EXPECT_EQ(render("bottom.kvpkg --channel roughness --set level=0.2").rgba[0], 51);
    expectFailure(run("render bottom.kvpkg --channel glossiness -o none.png"));
}

// The constants of two graphs are chosen so that a hash with a known secret takes an image of the one, of
// three channels, for one of the other, of four.
TEST_F(Tool, ImagesAreNotMistakenForOthers) {
    compilePackage("twins", given("twins.xml"));
    const Outcome outcome = run("maps twins.kvpkg -o twins --size 256");
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_NE(read("twins/three/diffuse.png"), read("twins/four/diffuse.png"));
}

TEST_F(Tool, FailedRenderSaysWhyKeepsTheOldPictureAndLeavesNothingBehind) {
    write("rendered.png", "old");
    write("noise.kvpkg", "no package");
    compilePackage("other", replaced(given("top.xml"), "\"Output\"", "\"Outptu\""));
    fs::create_directory(folder / "folder.png");
    write("wrong.txt", "pkg://bottom/pkg://pass_through\n1d f2 5\n");
    const std::string package = read("bottom.kvpkg");
    const std::pair<const char*, const char*> partsOfMessages[] = {
        {"noise.kvpkg", "noise.kvpkg: not a package"},
        {"bottom.xml", "kvsubstance compile"},
        {"missing.kvpkg", "missing.kvpkg: cannot be read"},
        {"bottom.kvpkg other.kvpkg", "\"Outptu\""},
        {"bottom.kvpkg -o folder.png", "folder"},
        {"bottom.kvpkg -o nowhere/rendered.png", "nowhere"},
        {"bottom.kvpkg --set levle=1", "\"level\""},
        {"bottom.kvpkg --set level=high", "expected a number"},
        {"bottom.kvpkg --set level=2", "up to 1"},
        {"bottom.kvpkg --set tint=1,2", "3 numbers"},
        {"bottom.kvpkg --set look=Noisi", "1 \"Noisy\""},
        {"bottom.kvpkg --set look=0.5", "whole number"},
        {"bottom.kvpkg --preset Bleu", "\"Blue\""},
        {"bottom.kvpkg -o bottom.kvpkg", "itself"},
        {"bottom.kvpkg --save-state rendered.png", "itself"},
        {"bottom.kvpkg --state wrong.txt", "wrong.txt:2: \"1d f2 5\""}};
    for (const auto& [arguments, message] : partsOfMessages) {
        SCOPED_TRACE(arguments);
        const bool isElsewhere = std::string(arguments).find("-o") != std::string::npos;
        expectFailure(run(std::string("render ") + arguments + (isElsewhere ? "" : " -o rendered.png")),
                      message);
        EXPECT_EQ(read("rendered.png"), "old");
    }
    EXPECT_EQ(read("bottom.kvpkg"), package);
    write("state.txt", "old"); // saved only with its picture
    expectFailure(run("render bottom.kvpkg other.kvpkg -o rendered.png --save-state state.txt"));
    EXPECT_EQ(read("state.txt"), "old");
    expectNothingLeftBehind();
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
    expectFailure(run("render bottom.kvpkg --state state.txt -o a.png"), "state.txt:1:"); // another's
}

TEST_F(Tool, SweepRendersAGridWithASheet) {
    const Outcome outcome =
        run("sweep bottom.kvpkg --vary level=0..1:2 --vary look=0..1:2 -o out/sweep --sheet sheet.png");
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(readPng(folder / "out/sweep/3_level=1_look=0.png").rgba,
              render("bottom.kvpkg --set level=1 --set look=0").rgba);
    expectPart(outcome.out, "4/4 ");
    const Pixels sheet = readPng(folder / "sheet.png");
    EXPECT_GT(sheet.width, 2 * 256u);
    EXPECT_LT(sheet.width, 3 * 256u);

    EXPECT_EQ(run("sheet rendered.png sheet.png -o both.png").status, 0);
    EXPECT_GT(readPng(folder / "both.png").width, 2 * 256u);
    expectFailure(run("sheet bottom.kvpkg -o none.png"));
}

TEST_F(Tool, DescribesTheHostsModel) {
    const std::string good = given("described.xml");
    write("good.xml", good);
    const Outcome outcome = run("describe good.xml --json");
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const auto input = nlohmann::json::parse(outcome.out)["inputs"][0];
    EXPECT_EQ(input["default"].dump() + input["max"].dump() + input["alters"].dump(), "[0.1][2.0][\"o\"]");
    write("bad.xml", replaced(good, "type=\"0\"", ""));
    expectFailure(run("describe bad.xml"), "input 1 needs the attribute \"type\"");
}

TEST_F(Tool, InternationalFileNames) {
    const std::string name = "gr\xC3\xBCn \xE6\x9C\xA8"; // in no single code page but UTF-8
    fs::copy_file(folder / "bottom.kvpkg", folder / fs::u8path(name + ".kvpkg"));
    const Outcome outcome = run("render \"" + name + ".kvpkg\" -o \"" + name + ".png\"");
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_NE(read(name + ".png"), "");
    expectFailure(run("info \"" + name + "\""), name); // no such file
}

#if !defined(_WIN32)
TEST_F(Tool, FilesThatCannotBeReadOrWrittenAreFailures) {
    write("rendered.png", "old");
    const std::string tool = "\"" KVSUBSTANCE_TOOL "\" ";
    const std::string pipeWithoutReader = "mkfifo pipe && { (exec 4<pipe) & exec 5>pipe; wait; ";
    for (const std::string& command :
         {tool + "info bottom.kvpkg >/dev/full",                                     // a full disk
          "ulimit -f 1; " + tool + "render bottom.kvpkg --size 512 -o rendered.png", // a full disk, in effect
          tool + "render bottom.kvpkg -o /proc/rendered.png", // a folder that takes no files
          pipeWithoutReader + tool + "nodes >&5; }",          // a broken pipe
          tool + "info pipe", "cat bottom.kvpkg | " + tool + "info -",
          "cat bottom.kvpkg | " + tool + "info /dev/stdin"}) {
        SCOPED_TRACE(command);
        expectFailure(execute("(" + command + ")"));
    }
    EXPECT_EQ(read("rendered.png"), "old");
    expectNothingLeftBehind();
}
#endif

} // namespace
