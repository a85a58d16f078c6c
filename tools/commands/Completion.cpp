// kvsubstance completion: what a shell needs to complete commands, options and files, made from the
// description of the command line.

#include "tools/CommandLineText.h"
#include "tools/commands/Commands.h"

#include <iostream>
#include <string>

namespace tool {
namespace {

std::string optionsOf(const CLI::App& command) {
    std::string options;
    for (const CLI::Option* const option : command.get_options()) {
        if (isPositional(*option)) continue;
        for (const std::string& name : namesOf(*option)) options += (options.empty() ? "" : " ") + name;
    }
    return options;
}

// The endings of the files that a command reads, space between; empty: any.
std::string filesOf(const CLI::App& command) {
    std::string endings;
    const auto add = [&endings](const std::string& ending) {
        if (endings.find(ending) == std::string::npos) endings += (endings.empty() ? "" : " ") + ending;
    };
    for (const CLI::Option* const option : command.get_options()) {
        if (!isPositional(*option)) continue;
        const std::string name = option->get_name();
        if (name == "BOTTOM" || name == "TOP" || name == "PACKAGE") add("kvpkg");
        if (name == "SOURCE" || (name == "FILE" && command.get_name() == "describe")) add("xml");
        if (name == "FILE.png" || (name == "FILE" && command.get_name() == "sheet")) add("png");
    }
    return endings;
}

void printBashCompletion(const CLI::App& app) {
    std::string commands;
    for (const CLI::App* const command : commandsOf(app))
        commands += (commands.empty() ? "" : " ") + command->get_name();
    std::cout << "# Completion of kvsubstance for bash.\n"
                 "_kvsubstance() {\n"
                 "    local word=${COMP_WORDS[COMP_CWORD]} options= files=\n"
                 "    if ((COMP_CWORD == 1)); then\n"
                 "        COMPREPLY=($(compgen -W \""
              << commands
              << " --help --version\" -- \"$word\"))\n"
                 "        return\n"
                 "    fi\n"
                 "    case ${COMP_WORDS[1]} in\n";
    for (const CLI::App* const command : commandsOf(app))
        std::cout << "    " << command->get_name() << ") options='" << optionsOf(*command) << "' files='"
                  << filesOf(*command) << "' ;;\n";
    std::cout << "    esac\n"
                 "    if [[ $word == -* ]]; then\n"
                 "        COMPREPLY=($(compgen -W \"$options\" -- \"$word\"))\n"
                 "        return\n"
                 "    fi\n"
                 "    [[ ${COMP_WORDS[COMP_CWORD - 1]} == -* ]] && files=\n"
                 "    local ending IFS=$' \\n'\n"
                 "    mapfile -t COMPREPLY < <(\n"
                 "        compgen -d -- \"$word\"\n"
                 "        [ -n \"$files\" ] || compgen -f -- \"$word\"\n"
                 "        for ending in $files; do compgen -f -X \"!*.$ending\" -- \"$word\"; done)\n"
                 "}\n"
                 "complete -o filenames -F _kvsubstance kvsubstance\n";
}

} // namespace

void addCompletion(CLI::App& app, int&) {
    CLI::App* const command = app.add_subcommand("completion", "Print the completion script for bash");
    command->footer("Example: source <(kvsubstance completion)");
    command->callback([&app] { printBashCompletion(app); });
}

} // namespace tool
