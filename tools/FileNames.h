// Folders, and names for files in them.
#pragma once

#include <set>
#include <string>

namespace tool {

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
