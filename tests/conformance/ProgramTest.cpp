// The judge as a process: what it prints and returns, also when the engine takes its process down.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#ifndef _WIN32
#include <sys/wait.h>
#endif

namespace {

struct Outcome {
    int status;
    std::string output;
};

Outcome run(const std::string& program, const std::string& arguments, const std::string& brokenStart = "") {
    const std::string output = testing::TempDir() + "kvsubstance-judge-" +
                               testing::UnitTest::GetInstance()->current_test_info()->name();
    std::string command = "\"" + program + "\" " + arguments + " >\"" + output + "\" 2>&1";
#ifdef _WIN32
    _putenv_s("KVSUBSTANCE_BROKEN_START", brokenStart.c_str());
    const int status = std::system(("\"" + command + "\"").c_str());
#else
    setenv("KVSUBSTANCE_BROKEN_START", brokenStart.c_str(), 1);
    const int raw = std::system(command.c_str());
    const int status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
#endif
    std::ifstream text(output); // not as bytes: lines end in different ways
    return {status, {std::istreambuf_iterator<char>(text), {}}};
}

const std::string own =
    "\"" KVSUBSTANCE_OWN_ENGINE "/stripes.xml\" \"" KVSUBSTANCE_OWN_ENGINE "/varnish.xml\"";

TEST(Judge, FindsNothingWrongWithTheEmbeddedEngine) {
    const Outcome outcome =
        run(KVSUBSTANCE_CONFORMANCE,
            "\"" KVSUBSTANCE_SAMPLES "/brick_wall.kvpkg\" \"" KVSUBSTANCE_SAMPLES "/moss_overgrowth.kvpkg\"");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.output.find(" kept, 0 broken, 0 not judged\n"), std::string::npos) << outcome.output;
}

TEST(Judge, ReportsCrashesHangsAndExits) {
    const struct {
        const char* brokenStart;
        int status;
        const char* words;
    } cases[] = {
        {"", 0, "kept        empty-start\n1 kept, 0 broken, 0 not judged\n"},
        {"crash", 1, "BROKEN      empty-start: expected "},
        {"exit", 1, "BROKEN      empty-start: expected a verdict, saw the process end with status 0\n"},
        {"hang", 1, "BROKEN      empty-start: expected an end, saw none in 1 seconds\n"}};
    for (const auto& each : cases) {
        const std::string limit = std::string(each.brokenStart) == "hang" ? " --time-limit 1 " : " ";
        const Outcome outcome =
            run(KVSUBSTANCE_BROKEN_JUDGE, "--clause empty-start" + limit + own, each.brokenStart);
        EXPECT_EQ(outcome.status, each.status) << each.brokenStart;
        EXPECT_NE(outcome.output.find(each.words), std::string::npos) << outcome.output;
    }
    // What does not start a run is judged all the same.
    const Outcome whole = run(KVSUBSTANCE_BROKEN_JUDGE, own, "exit");
    EXPECT_EQ(whole.status, 1);
    EXPECT_NE(whole.output.find("kept        connect-removes\n"), std::string::npos) << whole.output;
}

TEST(Judge, ExplainsItself) {
    const struct {
        std::string arguments;
        int status;
        const char* words;
    } cases[] = {
        {"--help", 0, "usage: "},
        {"--list", 0, "connect-order           A connection takes the input's uid first.\n"},
        {"", 2, "error: expected one or two package files; see --help\n"},
        {"a b c", 2, "error: expected one or two package files; see --help\n"},
        {"--sideways a", 2, "error: there is no option --sideways; see --help\n"},
        {"--clause", 2, "error: --clause takes a value; see --help\n"},
        {"--clause none a", 2, "error: there is no clause \"none\"; see --help\n"},
        {"--time-limit 0 a", 2, "error: \"0\" is no number of seconds from 1 to 86400; see --help\n"},
        {"--in-process a", 2, "error: --in-process takes --clause; see --help\n"},
        {"nowhere", 2, "error: nowhere cannot be read\n"},
        {"--clause connect-order " + own.substr(0, own.find(' ')), 0,
         "not judged  connect-order: there is no second package\n"},
    };
    for (const auto& each : cases) {
        const Outcome outcome = run(KVSUBSTANCE_BROKEN_JUDGE, each.arguments);
        EXPECT_EQ(outcome.status, each.status) << each.arguments;
        EXPECT_NE(outcome.output.find(each.words), std::string::npos) << outcome.output;
    }
}

} // namespace
