#include "tools/CommandLineText.h"

namespace tool {

std::vector<const CLI::App*> commandsOf(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<std::string> namesOf(const CLI::Option& option) {
    if (isPositional(option)) return {option.get_name()};
    std::vector<std::string> names;
    names.reserve(option.get_snames().size() + option.get_lnames().size());
    for (const std::string& name : option.get_snames()) names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
    return names;
}

bool isPositional(const CLI::Option& option) {
    return option.get_positional();
}

bool takesValue(const CLI::Option& option) {
    return option.get_items_expected_max() > 0;
}

} // namespace tool
