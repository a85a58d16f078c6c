// The program: one child process for each clause, a line for each verdict.
#include "conformance/ChildProcess.h"
#include "conformance/Conformance.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <system_error>
#include <thread>

namespace kvSubstance::conformance {

namespace {

constexpr int exitKept = 0, exitBroken = 1, exitUsage = 2;
constexpr int exitNotJudged = 3; // between parent and child only

// What a child says stands behind this, because linkers and engines may print, too.
const char* const verdictMark = "\nverdict: ";

constexpr const char* usage = R"(usage: PROGRAM [options] PACKAGE [TOP]

Judges the linker and the engine that the program is linked with by what kvSubstance relies on, with a package
and, for what takes a stack, with one that goes over it. Each clause is judged in a process of its own.

  --clause NAME         judge this one only
  --list                list the clauses, and what they say
  --time-limit SECONDS  how long one clause may take (120)
  --in-process          with --clause: judge it in this very process, say for a debugger
  --help                this text

Exit status: 0 nothing is broken, 1 something is, 2 wrong usage or an unreadable file.
)";

struct Options {
    std::vector<std::string> files;
    std::string clause;
    int timeLimit = 120; // seconds
    bool isInProcess = false, wantsList = false, wantsHelp = false;
};

std::optional<Options> complain(const std::string& what) {
    std::cerr << "error: " << what << "; see --help\n";
    return std::nullopt;
}

std::optional<Options> readOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const bool takesValue = argument == "--clause" || argument == "--time-limit";
        if (takesValue && ++i == argc) return complain(argument + " takes a value");
        if (argument == "--clause") {
            options.clause = argv[i];
        } else if (argument == "--time-limit") {
            options.timeLimit = std::atoi(argv[i]);
            if (options.timeLimit <= 0 || options.timeLimit > 86400)
                return complain(std::string("\"") + argv[i] + "\" is no number of seconds from 1 to 86400");
        } else if (argument == "--in-process") {
            options.isInProcess = true;
        } else if (argument == "--list") {
            options.wantsList = true;
        } else if (argument == "--help") {
            options.wantsHelp = true;
        } else if (argument[0] == '-') {
            return complain("there is no option " + argument);
        } else {
            options.files.push_back(argument);
        }
    }
    if (options.wantsList || options.wantsHelp) return options;
    if (options.files.empty() || options.files.size() > 2)
        return complain("expected one or two package files");
    const auto isNamed = [&](const Clause& clause) { return options.clause == clause.name; };
    if (!options.clause.empty() && std::none_of(clauses().begin(), clauses().end(), isNamed))
        return complain("there is no clause \"" + options.clause + "\"");
    if (options.isInProcess && options.clause.empty()) return complain("--in-process takes --clause");
    return options;
}

bool readFile(const std::string& path, std::string& content) {
    std::error_code ignored;
    if (std::filesystem::is_directory(std::filesystem::u8path(path), ignored)) {
        std::cerr << "error: " << path << " is a folder; name a package file\n";
        return false;
    }
    std::ifstream file(path, std::ios::binary);
    content.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    if (file && !content.empty()) return true;
    std::cerr << "error: " << path << (file ? " is empty" : " cannot be read") << "\n";
    return false;
}

int judgeInProcess(const std::string& clause, const Packages& packages) {
    const Verdict verdict = judge(clause, linkedInterface(), packages);
    const bool isKept = verdict.judgement == Judgement::Kept;
    std::cout << verdictMark << (isKept ? "kept" : verdict.observed) << std::endl;
    if (isKept) return exitKept;
    return verdict.judgement == Judgement::Broken ? exitBroken : exitNotJudged;
}

Verdict verdictOf(const ChildEnd& end, int timeLimit) {
    const std::string status = std::to_string(end.status);
    switch (end.kind) {
    case ChildEnd::Kind::TimedOut:
        return {Judgement::Broken, "expected an end, saw none in " + std::to_string(timeLimit) + " seconds"};
    case ChildEnd::Kind::Crashed:
        return {Judgement::Broken, "expected an end, saw a crash (" + status + ")"};
    case ChildEnd::Kind::NotStarted: // there is no verdict of such a child
    case ChildEnd::Kind::Exited:
        break;
    }
    const std::size_t mark = end.output.rfind(verdictMark + 1);
    if (mark == std::string::npos ||
        (end.status != exitKept && end.status != exitBroken && end.status != exitNotJudged))
        return {Judgement::Broken, "expected a verdict, saw the process end with status " + status};
    std::string text = end.output.substr(mark + std::strlen(verdictMark + 1));
    text.erase(std::min(text.find_first_of("\r\n"), text.size()));
    if (end.status == exitKept) return {};
    return {end.status == exitBroken ? Judgement::Broken : Judgement::NotJudged, text};
}

// A system that is busy refuses a process now and then.
ChildEnd judgeInChild(char** argv, const Clause& clause, std::chrono::seconds limit) {
    constexpr int mostAttempts = 5;
    ChildEnd end;
    for (int attempt = 1; end.kind == ChildEnd::Kind::NotStarted && attempt <= mostAttempts; ++attempt) {
        if (attempt > 1) std::this_thread::sleep_for(std::chrono::milliseconds(200));
        end = runAgain(argv, {"--in-process", "--clause", clause.name}, limit);
    }
    return end;
}

int report(char** argv, const Options& options) {
    std::size_t counts[3] = {};
    for (const Clause& clause : clauses()) {
        if (!options.clause.empty() && options.clause != clause.name) continue;
        const ChildEnd end = judgeInChild(argv, clause, std::chrono::seconds(options.timeLimit));
        if (end.kind == ChildEnd::Kind::NotStarted) {
            std::cerr << "error: " << argv[0] << ": a process to judge in could not be started\n";
            return exitUsage;
        }
        const Verdict verdict = verdictOf(end, options.timeLimit);
        static const char* const words[] = {"kept        ", "BROKEN      ", "not judged  "};
        ++counts[static_cast<std::size_t>(verdict.judgement)];
        std::cout << words[static_cast<std::size_t>(verdict.judgement)] << clause.name;
        if (verdict.judgement != Judgement::Kept) std::cout << ": " << verdict.observed;
        std::cout << std::endl;
    }
    std::cout << counts[0] << " kept, " << counts[1] << " broken, " << counts[2] << " not judged\n";
    return counts[1] == 0 ? exitKept : exitBroken;
}

} // namespace

int run(int argc, char** argv) {
    const std::optional<Options> options = readOptions(argc, argv);
    if (!options) return exitUsage;
    if (options->wantsHelp) std::cout << usage;
    if (options->wantsList)
        for (const Clause& clause : clauses())
            std::cout << clause.name
                      << std::string(24 - std::min<std::size_t>(23, std::strlen(clause.name)), ' ')
                      << clause.statement << "\n";
    if (options->wantsHelp || options->wantsList) return exitKept;

    Packages packages;
    if (!readFile(options->files[0], packages.bottom)) return exitUsage;
    if (options->files.size() > 1 && !readFile(options->files[1], packages.top)) return exitUsage;
    return options->isInProcess ? judgeInProcess(options->clause, packages) : report(argv, *options);
}

} // namespace kvSubstance::conformance
