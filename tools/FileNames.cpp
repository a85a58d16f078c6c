#include "tools/FileNames.h"

#include "tools/Failure.h"

#include <cctype>
#include <system_error>

namespace tool {
namespace {

constexpr size_t longestName = 100; // characters, which leaves room for an ending

bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
}

std::string lowered(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

} // namespace

void makeFolder(const std::string& path) {
    std::error_code error;
    std::filesystem::create_directories(pathOf(path), error);
    std::error_code ignored;
    if (!std::filesystem::is_directory(pathOf(path), ignored))
        throw Failure(path + ": the folder cannot be created" + (error ? ": " + error.message() : ""));
}

std::string FileNames::choose(const std::string& wanted) {
    std::string name = wanted.substr(0, longestName);
    for (size_t i = 0; i < name.size(); ++i)
        if (!isPlain(name[i]) && (name[i] != '.' || i == 0 || i + 1 == name.size())) name[i] = '_';
    if (name.empty()) name = "unnamed";
    std::string unique = name;
    for (int number = 2; !taken.insert(lowered(unique)).second; ++number)
        unique = name + "_" + std::to_string(number);
    return unique;
}

std::string inFolder(const std::string& folder, const std::string& name) {
    return textOf(pathOf(folder) / pathOf(name));
}

} // namespace tool
