// Help for misspelled names.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace embedded {

// Ends a message: the nearest real names, or all of them if none is near and they are few.
std::string suggestion(std::string_view name, const std::vector<std::string>& realNames);

std::string quoted(std::string_view text); // in one line: control characters become "?"

} // namespace embedded
