#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// All bytes of a file, or none when it cannot be read.
inline std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
