// Runs the built tool as a process, in a folder with two packages.
#pragma once

#include <gtest/gtest.h>
#include <png.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#if !defined(_WIN32)
#include <sys/wait.h>
#endif

namespace fs = std::filesystem;

#if defined(_WIN32)
inline const char* const changeFolder = "cd /d \""; // to another drive, too
#else
inline const char* const changeFolder = "cd \"";
#endif

// A bottom with an input of each widget, and a channel that is no colour.
inline const char* const bottomSource = R"(<package>
  <graph url="pkg://bottom" label="Bottom">
    <input identifier="$resolution" type="integer2" default="4,4"/>
    <input identifier="level" label="Level" type="float" default="0.5" min="0" max="1" step="0.1"/>
    <input identifier="tint" label="Tint" type="float3" default="#ff0000"/>
    <input identifier="look" label="Look" type="integer" default="0">
      <item value="0" text="Plain"/>
      <item value="1" text="Noisy"/>
    </input>
    <node name="plain" kind="uniform" colour="colour" value="{tint}" encoding="srgb"/>
    <node name="gray" kind="uniform" value="{level}"/>
    <node name="noise" kind="fbm" seed="{look}"/>
    <node name="mixed" kind="blend" background="plain" foreground="noise" mode="multiply" opacity="{level}"/>
    <output identifier="basecolor" usage="diffuse" node="mixed"/>
    <output identifier="roughness" node="gray"/>
    <preset label="Blue" description="As the sky"><set input="tint" value="#0000ff"/></preset>
  </graph>
</package>)";

inline const char* const topSource = R"(<package>
  <graph url="pkg://top" label="Top">
    <input identifier="$resolution" type="integer2" default="5,5"/>
    <input identifier="diffuse" type="image"/>
    <input identifier="height" type="image"/>
    <input identifier="amount" label="Amount" type="float" default="0" min="0" max="1"/>
    <node name="below" kind="imageInput" image="{diffuse}"/>
    <node name="relief" kind="imageInput" image="{height}"/>
    <node name="white" kind="uniform" colour="colour" value="1,1,1,1"/>
    <node name="first" kind="blend" background="below" foreground="white" opacity="{amount}"/>
    <node name="result" kind="blend" background="first" foreground="relief" opacity="0"/>
    <output identifier="Output" format="srgb8" node="result"/>
    <preset label="Snow"><set input="amount" value="1"/><set input="$resolution" value="3,3"/></preset>
  </graph>
</package>)";

struct Outcome {
    int status;
    std::string out;
    std::string error;
};

struct Pixels {
    unsigned int width = 0;
    unsigned int height = 0;
    std::vector<unsigned char> rgba;
};

inline std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline Pixels readPng(const fs::path& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.string().c_str())) return {};
    image.format = PNG_FORMAT_RGBA;
    Pixels pixels{image.width, image.height, std::vector<unsigned char>(PNG_IMAGE_SIZE(image))};
    if (!png_image_finish_read(&image, nullptr, pixels.rgba.data(), 0, nullptr)) return {};
    return pixels;
}

// Each test has a folder of its own with two packages.
class Tool : public testing::Test {
protected:
    void SetUp() override {
        const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
        folder = fs::path(testing::TempDir()) / ("kvsubstance_tool_" + name);
        fs::remove_all(folder);
        fs::create_directories(folder);
        compilePackage("bottom", bottomSource);
        compilePackage("top", topSource);
    }
    void TearDown() override { fs::remove_all(folder); }

    void writeFile(const std::string& name, const std::string& text) const {
        std::ofstream(folder / name, std::ios::binary) << text;
    }

    void compilePackage(const std::string& name, const std::string& source) const {
        writeFile(name + ".xml", source);
        const Outcome outcome = run("compile " + name + ".xml -o " + name + ".kvpkg");
        ASSERT_EQ(outcome.status, 0) << outcome.error;
    }

    // In the test's folder.
    Outcome run(const std::string& arguments) const {
        const std::string command = changeFolder + folder.string() + "\" && \"" KVSUBSTANCE_TOOL "\" " +
                                    arguments + " >stdout.txt 2>stderr.txt";
        int status = std::system(command.c_str());
#if !defined(_WIN32)
        status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
        return {status, readFile(folder / "stdout.txt"), readFile(folder / "stderr.txt")};
    }

    Pixels render(const std::string& arguments) const {
        const Outcome outcome = run("render " + arguments + " -o rendered.png");
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        return readPng(folder / "rendered.png");
    }

    fs::path folder;
};
