// Reads whole files, and says why when it cannot.
#pragma once

#include "platform/base.h"

#include <string>
#include <string_view>

namespace tool {

// Throws Failure for what is missing, unreadable, or no ordinary file.
kv::vector<char> readFileContent(const std::string& path);

std::string_view asText(const kv::vector<char>& content);

} // namespace tool
