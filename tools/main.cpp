// kvsubstance: makes packages, looks into them, and renders them.

#include "embedded/compiler/Suggestion.h"
#include "tools/Failure.h"
#include "tools/commands/Commands.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <csignal>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#endif

namespace {

// Says more than the parser would of a command that is missing or misspelled.
void checkCommand(const CLI::App& app, const std::string& name) {
    if (!name.empty() && name[0] == '-') return;
    std::vector<std::string> commands;
    for (const CLI::App* const command : app.get_subcommands({})) commands.push_back(command->get_name());
    if (std::find(commands.begin(), commands.end(), name) != commands.end()) return;
    throw tool::UsageError(
        (name.empty() ? "a command is needed" : embedded::quoted(name) + " is no command") +
        embedded::suggestion(name, commands));
}

int runCommandLine(int argc, char** argv) {
    int status = tool::Succeeded;
    CLI::App app("Makes material packages, looks into them, and renders them.", "kvsubstance");
    app.require_subcommand(0, 1);
    app.set_version_flag("--version", "kvSubstance " KVSUBSTANCE_VERSION, "Print the version");
    app.allow_windows_style_options(false); // a slash begins a path there too
    app.footer("Exit status: 0 done, 1 failed, 2 the command line makes no sense.\n"
               "\"kvsubstance COMMAND --help\" shows a command's options and an example.");
    tool::addCompile(app, status);
    tool::addInfo(app, status);
    tool::addRender(app, status);
    tool::addMaps(app, status);
    tool::addSweep(app, status);
    tool::addSheet(app, status);
    tool::addGallery(app, status);
    tool::addVerify(app, status);
    tool::addDescribe(app, status);
    tool::addNodes(app, status);
    tool::addManual(app, status);
    tool::addCompletion(app, status);
    const std::string first = argc > 1 ? argv[1] : "";
    checkCommand(app, first);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app.exit(error); // help or version
        throw tool::UsageError(std::string(error.what()) + "; see \"kvsubstance " +
                               (first[0] == '-' ? "" : first + " ") + "--help\"");
    }
    return status;
}

// One line, whatever names of files and inputs hold.
int report(std::string message, int status) {
    for (char& c : message)
        if (static_cast<unsigned char>(c) < ' ') c = '?';
    std::cerr << "error: " << message << "\n";
    return status;
}

// What is printed is UTF-8, and the same bytes on all systems.
void prepareOutput() {
#if defined(_WIN32)
    SetConsoleOutputCP(CP_UTF8);
    _setmode(_fileno(stdout), _O_BINARY);
#else
    // A reader that goes away, and a limit on the size of files, are errors of writing, not the end of the
    // process.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
#endif
}

} // namespace

int main(int argc, char** argv) {
    prepareOutput();
    try {
        const int status = runCommandLine(argc, argv);
        std::cout.flush();
        if (!std::cout) return report("standard output: cannot be written", tool::Failed);
        return status;
    } catch (const tool::UsageError& error) {
        return report(error.what(), tool::BadUsage);
    } catch (const std::bad_alloc&) {
        return report("there is not enough memory; try smaller sizes, or fewer or smaller pictures",
                      tool::Failed);
    } catch (const std::exception& error) {
        return report(error.what(), tool::Failed);
    }
}
