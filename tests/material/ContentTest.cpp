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
    const std::string folder = testing::TempDir() + "kvsubstance-content";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    const std::string path = folder + "/file";
    for (const std::string& bytes : {std::string(), std::string("a\r\nb\x1a\0c\n", 8)}) {
        std::ofstream(path, std::ios::binary) << bytes;
        EXPECT_EQ(read(path), "[" + bytes + "][" + bytes + "]");
    }
    EXPECT_EQ(read(folder + "/missing"), "[old][]");
    EXPECT_EQ(read(folder), "[old][]");
#if !defined(_WIN32)
    ASSERT_EQ(mkfifo((folder + "/pipe").c_str(), 0600), 0);
    EXPECT_EQ(read(folder + "/pipe"), "[old][]");
#endif
    std::filesystem::remove_all(folder);
}

} // namespace

} // namespace kvSubstance
