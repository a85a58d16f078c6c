// Paths, folders, and names for files in them.
#pragma once

#include <filesystem>
#include <set>
#include <string>

namespace tool {

// The tool's own texts are UTF-8 on Windows and bytes as they are elsewhere, file names included. What the
// filesystem library makes of plain text on Windows depends on the library.
inline std::filesystem::path pathOf(const std::string& text) {
    return std::filesystem::u8path(text);
}
inline std::string textOf(const std::filesystem::path& path) {
    return path.u8string();
}

// The file's name without folders and ending.
inline std::string stemOf(const std::string& path) {
    return textOf(pathOf(path).stem());
}

// With the folders above it. Throws Failure.
void makeFolder(const std::string& path);

// Names that every file system and every link takes: letters, digits, "-", "_" and, inside, ".". No two are
// alike, whatever the letter case.
class FileNames {
public:
    // The wanted name, as near as may be.
    std::string choose(const std::string& wanted);

private:
    std::set<std::string> taken; // in lower case
};

std::string inFolder(const std::string& folder, const std::string& name);

} // namespace tool
