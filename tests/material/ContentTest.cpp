#include "material/Content.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

namespace kvSubstance {

namespace {

namespace fs = std::filesystem;

class Content : public testing::Test {
protected:
    Content() { fs::create_directories(folder); }
    ~Content() override { fs::remove_all(folder); }

    std::string write(const char* name, const std::string& bytes) {
        std::ofstream(folder / name, std::ios::binary) << bytes;
        return (folder / name).string();
    }

    // What each reader makes of a buffer that holds "old".
    static std::string read(const std::string& path) {
        std::string texts;
        for (const auto reader : {readSubstanceContent, readSubstanceContentAsChar}) {
            kv::vector<char> content{'o', 'l', 'd'};
            reader(kvString::IString(path.c_str(), kvString::EncodingMultibyte), content);
            texts += "[" + std::string(content.begin(), content.end()) + "]";
        }
        return texts;
    }

    const fs::path folder =
        fs::temp_directory_path() /
        ("kvsubstance-content-" + std::to_string(testing::UnitTest::GetInstance()->random_seed()) +
         std::to_string(reinterpret_cast<std::uintptr_t>(this)));
};

TEST_F(Content, BytesAsTheyAre) {
    EXPECT_EQ(read(write("empty", "")), "[][]");
    const std::string bytes("a\r\nb\x1a\0c\n", 8);
    EXPECT_EQ(read(write("bytes", bytes)), "[" + bytes + "][" + bytes + "]");
}

TEST_F(Content, WhatIsNoFileIsNotOpened) {
    EXPECT_EQ(read((folder / "missing").string()), "[old][]");
    EXPECT_EQ(read(folder.string()), "[old][]");
#if !defined(_WIN32)
    const std::string pipe = (folder / "pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(read(pipe), "[old][]");
#endif
}

} // namespace

} // namespace kvSubstance
