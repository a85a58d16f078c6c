#include "material/Content.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace kvSubstance;

// What each reader makes of a buffer that holds "old".
std::string read(const std::string& path) {
    std::string texts;
    for (const auto reader : {readSubstanceContent, readSubstanceContentAsChar}) {
        kv::vector<char> content{'o', 'l', 'd'};
        reader(kvString::IString(path.c_str(), kvString::EncodingMultibyte), content);
        texts += "[" + std::string(content.begin(), content.end()) + "]";
    }
    return texts;
}

TEST(Content, BytesOfRegularFiles) {
    const std::string path = testing::TempDir() + "kvsubstance-content";
    std::filesystem::remove(path); // of an earlier run
    EXPECT_EQ(read(path), "[old][]");
    EXPECT_EQ(read(testing::TempDir()), "[old][]");
    for (const std::string& bytes : {std::string(), std::string("a\r\nb\x1a\0c\n", 8)}) {
        std::ofstream(path, std::ios::binary) << bytes;
        EXPECT_EQ(read(path), "[" + bytes + "][" + bytes + "]");
    }
    std::filesystem::remove(path);
}

} // namespace
