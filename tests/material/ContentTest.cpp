#include "material/Content.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace kvSubstance;
namespace fs = std::filesystem;

// What each reader makes of a buffer that holds "old".
std::string read(const std::string& path, kvString::Encoding encoding = kvString::EncodingMultibyte) {
    std::string texts;
    for (const auto reader : {readSubstanceContent, readSubstanceContentAsChar}) {
        kv::vector<char> content{'o', 'l', 'd'};
        reader(kvString::IString(path.c_str(), encoding), content);
        texts += "[" + std::string(content.begin(), content.end()) + "]";
    }
    return texts;
}

TEST(Content, BytesOfRegularFiles) {
    const std::string path = testing::TempDir() + "kvsubstance-content";
    fs::remove(path); // of an earlier run
    EXPECT_EQ(read(path), "[old][]");
    EXPECT_EQ(read(testing::TempDir()), "[old][]");
    for (const std::string& bytes : {std::string(), std::string("a\r\nb\x1a\0c\n", 8)}) {
        std::ofstream(path, std::ios::binary) << bytes;
        EXPECT_EQ(read(path), "[" + bytes + "][" + bytes + "]");
    }
    fs::remove(path);
}

// Whatever the code page, as long as it has the letters; on Windows the name is made without it.
TEST(Content, InternationalNames) {
    const std::string name = "kvsubstance-gr\xC3\xBCn"; // "grün"
    const fs::path path = testing::TempDir() / fs::u8path(name);
    std::ofstream(path, std::ios::binary) << "green";
    const std::string utf8 = testing::TempDir() + name;
    EXPECT_EQ(read(utf8, kvString::EncodingUtf8), "[green][green]");
    const kvString::IString text(utf8.c_str(), kvString::EncodingUtf8);
    EXPECT_EQ(read(text.asMultibyte().asChar()), "[green][green]");
    fs::remove(path);
}

} // namespace
