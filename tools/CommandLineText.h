// What the command line's own description says, for those who print it in other forms.
#pragma once

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace tool {

std::vector<const CLI::App*> commandsOf(const CLI::App& app);

// The names as they are typed, with dashes, short ones first; of a positional its placeholder.
std::vector<std::string> namesOf(const CLI::Option& option);

bool isPositional(const CLI::Option& option);
bool takesValue(const CLI::Option& option);

} // namespace tool
