// Runs the built tool as a process, in a folder with two packages.
#pragma once

#include "tests/ReadFile.h"

#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <cstdlib>
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

struct Outcome {
    int status;
    std::string out;
    std::string error;
};

inline void expectPart(const std::string& text, const std::string& part) {
    EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text;
}

// Status 1, and a line that has the part in it.
inline void expectFailure(const Outcome& outcome, const std::string& part = "") {
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.error.compare(0, 7, "error: "), 0) << outcome.error;
    EXPECT_EQ(outcome.error.find('\n'), outcome.error.size() - 1) << outcome.error;
    expectPart(outcome.error, part);
}

inline std::string replaced(std::string text, const std::string& from, const std::string& to) {
    expectPart(text, from);
    return text.replace(text.find(from), from.size(), to);
}

struct Pixels {
    unsigned int width = 0;
    unsigned int height = 0;
    std::vector<unsigned char> rgba;
};

inline Pixels readPng(const fs::path& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.string().c_str())) return {};
    image.format = PNG_FORMAT_RGBA;
    Pixels pixels{image.width, image.height, std::vector<unsigned char>(PNG_IMAGE_SIZE(image))};
    if (!png_image_finish_read(&image, nullptr, pixels.rgba.data(), 0, nullptr)) return {};
    return pixels;
}

// Each test has a folder of its own with two packages: a bottom with an input of each widget and a channel
// that is no colour, and a top.
class Tool : public testing::Test {
protected:
    void SetUp() override {
        const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
        folder = fs::path(testing::TempDir()) / ("kvsubstance_tool_" + name);
        fs::remove_all(folder);
        fs::create_directories(folder);
        for (const std::string package : {"bottom", "top"}) compilePackage(package, given(package + ".xml"));
    }
    void TearDown() override { fs::remove_all(folder); }

    static std::string given(const std::string& name) {
        return readFile(fs::path(KVSUBSTANCE_TOOL_TESTS) / name);
    }
    std::string read(const std::string& name) const { return readFile(folder / fs::u8path(name)); }
    void write(const std::string& name, const std::string& text) const {
        std::ofstream(folder / name, std::ios::binary) << text;
    }

    void compilePackage(const std::string& name, const std::string& source) const {
        write(name + ".xml", source);
        const Outcome outcome = run("compile " + name + ".xml -o " + name + ".kvpkg");
        ASSERT_EQ(outcome.status, 0) << outcome.error;
    }

    // In the test's folder.
    Outcome execute(const std::string& command) const {
        int status = std::system(
            (changeFolder + folder.string() + "\" && " + command + " >stdout.txt 2>stderr.txt").c_str());
#if !defined(_WIN32)
        status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
        return {status, read("stdout.txt"), read("stderr.txt")};
    }
    Outcome run(const std::string& arguments) const {
        return execute("\"" KVSUBSTANCE_TOOL "\" " + arguments);
    }

    Pixels render(const std::string& arguments) const {
        const Outcome outcome = run("render " + arguments + " -o rendered.png");
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        return readPng(folder / "rendered.png");
    }

    // A render that was interrupted leaves half a file under another name.
    void expectNothingLeftBehind() const {
        for (const auto& entry : fs::directory_iterator(folder)) EXPECT_NE(entry.path().extension(), ".tmp");
    }

    fs::path folder;
};
