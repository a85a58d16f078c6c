#include "tools/FileContent.h"

#include "material/Content.h"
#include "tools/Failure.h"
#include "tools/FileNames.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace tool {

kv::vector<char> readFileContent(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::file_status status = fs::status(pathOf(path), error);
    if (path == "-") throw Failure("-: standard input is not read; name a file");
    if (!fs::exists(status))
        throw Failure(
            path + ": cannot be read: " +
            (status.type() == fs::file_type::not_found ? "there is no such file" : error.message()));
    if (fs::is_directory(status)) throw Failure(path + ": cannot be read: it is a folder");
    if (!fs::is_regular_file(status))
        throw Failure(path + ": cannot be read: it is no ordinary file; store what it gives in one");
    // The library reads silently; opening the file here finds out what it would not tell.
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    if (!file) throw Failure(path + ": cannot be read: " + std::generic_category().message(errno));
    std::fclose(file);

    kv::vector<char> content;
    kvSubstance::readSubstanceContent(kvString::IString(path.c_str(), kvString::EncodingMultibyte), content);
    return content;
}

std::string_view asText(const kv::vector<char>& content) {
    return {content.data(), content.size()};
}

} // namespace tool
