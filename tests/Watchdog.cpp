// Linked into every test program: a test that hangs ends the process with a line that names it, before ctest
// ends it without one.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#else
#include <csignal>
#include <unistd.h>
#endif

namespace {

constexpr unsigned int seconds = 270; // ctest waits for 300

std::string message; // made before it is needed: a signal handler may not allocate

// Async-signal-safe.
[[noreturn]] void end() {
#if defined(_WIN32)
    std::fputs(message.c_str(), stderr);
    std::_Exit(1);
#else
    if (write(STDERR_FILENO, message.data(), message.size()) < 0) _exit(2);
    _exit(1);
#endif
}

// No thread that waits: tests fork, and look for threads that are left.
class Watchdog : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& test) override {
        message = std::string("watchdog: ") + test.test_suite_name() + "." + test.name() +
                  " hangs: no end after " + std::to_string(seconds) + " seconds\n";
#if defined(_WIN32)
        CreateTimerQueueTimer(
            &timer, nullptr, [](void*, BOOLEAN) { end(); }, nullptr, seconds * 1000, 0, WT_EXECUTEONLYONCE);
#else
        std::signal(SIGALRM, [](int) { end(); });
        alarm(seconds);
#endif
    }

    void OnTestEnd(const testing::TestInfo&) override {
#if defined(_WIN32)
        DeleteTimerQueueTimer(nullptr, timer, nullptr);
#else
        alarm(0);
#endif
    }

#if defined(_WIN32)
    HANDLE timer = nullptr;
#endif
};

[[maybe_unused]] const bool isListening = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new Watchdog); // which owns it
    return true;
}();

} // namespace
