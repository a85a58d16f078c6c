// kvsubstance manual: the manual page, made from the description of the command line, so that it cannot lag
// behind.

#include "tools/CommandLineText.h"
#include "tools/commands/Commands.h"

#include <iostream>
#include <string>

namespace tool {
namespace {

// As text of the page: backslashes and dashes are written out, and no line begins with a control character.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        const bool beginsLine = result.empty() || result.back() == '\n';
        if (beginsLine && (c == '.' || c == '\'')) result += "\\&";
        if (c == '\\')
            result += "\\e";
        else if (c == '-')
            result += "\\-";
        else
            result += c;
    }
    return result;
}

std::string bold(const std::string& text) {
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(const std::string& text) {
    return "\\fI" + escaped(text) + "\\fR";
}

std::string headOf(const CLI::Option& option) {
    if (isPositional(option)) return italic(option.get_name());
    std::string head;
    for (const std::string& name : namesOf(option)) head += (head.empty() ? "" : ", ") + bold(name);
    return takesValue(option) ? head + " " + italic(option.get_type_name()) : head;
}

std::string synopsisOf(const CLI::App& command) {
    std::string synopsis = bold("kvsubstance " + command.get_name());
    for (const CLI::Option* const option : command.get_options()) {
        if (option == command.get_help_ptr()) continue;
        const bool isRepeatable = option->get_items_expected_max() > 1;
        std::string part =
            isPositional(*option) ? italic(option->get_name()) : bold(namesOf(*option).front());
        if (!isPositional(*option) && takesValue(*option)) part += " " + italic(option->get_type_name());
        if (isRepeatable) part += "...";
        synopsis += option->get_required() ? " " + part : " [" + part + "]";
    }
    return synopsis;
}

void print(const CLI::App& command) {
    std::cout << ".SS " << command.get_name() << "\n"
              << synopsisOf(command) << "\n.PP\n"
              << escaped(command.get_description()) << ".\n";
    for (const CLI::Option* const option : command.get_options())
        if (option != command.get_help_ptr())
            std::cout << ".TP\n" << headOf(*option) << "\n" << escaped(option->get_description()) << ".\n";
    if (!command.get_footer().empty())
        std::cout << ".PP\n.nf\n" << escaped(command.get_footer()) << "\n.fi\n";
}

void printManual(const CLI::App& app) {
    std::cout << ".TH KVSUBSTANCE 1 \"\" \"kvSubstance " << KVSUBSTANCE_VERSION << "\" \"User Commands\"\n"
              << ".SH NAME\nkvsubstance \\- makes material packages, looks into them, and renders them\n"
              << ".SH SYNOPSIS\n"
              << bold("kvsubstance") << " " << italic("COMMAND") << " [" << italic("OPTION") << "...]\n"
              << ".SH COMMANDS\n";
    for (const CLI::App* const command : commandsOf(app)) print(*command);
    std::cout
        << ".SH EXIT STATUS\n"
           "0 done, 1 failed, 2 the command line makes no sense. An error is one line on standard error: "
           "the\n"
           "file and place, what was expected, and what to do. What a file held before stays when writing\n"
           "it anew fails.\n"
           ".SH ENVIRONMENT\n"
           ".TP\n.B KVSUBSTANCE_ENGINE_MEMORY\n"
           "Mebibytes of images that the engine keeps, 0 to 1048576; 0 keeps none between runs, 512 when it "
           "is\nnot set or no such number. A run may need more.\n"
           ".TP\n.B KVSUBSTANCE_INSTRUCTION_SET\n"
           "Keeps the engine to \\fBbaseline\\fR, \\fBavx2\\fR or \\fBavx512\\fR. The pictures are the same "
           "bytes.\n";
}

} // namespace

void addManual(CLI::App& app, int&) {
    CLI::App* const command = app.add_subcommand("manual", "Print the manual page");
    command->footer("Example: kvsubstance manual >kvsubstance.1");
    command->callback([&app] { printManual(app); });
}

} // namespace tool
