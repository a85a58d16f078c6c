#include "conformance/ChildProcess.h"

#ifdef _WIN32
#include <thread>

#include <windows.h>
#else
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#ifndef __linux__ // whose unistd.h declares it
extern char** environ;
#endif
#endif

namespace kvSubstance::conformance {

#ifdef _WIN32

namespace {

std::string readAll(HANDLE pipe) {
    std::string text;
    char buffer[4096];
    for (DWORD count = 0; ReadFile(pipe, buffer, sizeof buffer, &count, nullptr) && count > 0;)
        text.append(buffer, count);
    return text;
}

} // namespace

ChildEnd runAgain(char** /*argv*/, const std::vector<std::string>& moreArguments,
                  std::chrono::seconds limit) {
    ChildEnd end;
    std::wstring command = GetCommandLineW();
    for (const std::string& argument : moreArguments)
        command += L" " + std::wstring(argument.begin(), argument.end());
    std::wstring program(32768, L'\0');
    GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));

    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE reading = nullptr, writing = nullptr;
    if (!CreatePipe(&reading, &writing, &inheritable, 0)) return end;
    SetHandleInformation(reading, HANDLE_FLAG_INHERIT, 0);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX); // inherited: no window asks what to do
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = writing;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION child{};
    const bool isStarted = CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                          nullptr, &startup, &child) != 0;
    CloseHandle(writing);
    if (isStarted) {
        bool isLate = false;
        std::thread watchdog([&] {
            const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(limit).count();
            isLate = WaitForSingleObject(child.hProcess, static_cast<DWORD>(milliseconds)) == WAIT_TIMEOUT;
            if (isLate) TerminateProcess(child.hProcess, 1);
        });
        end.output = readAll(reading);
        watchdog.join();
        WaitForSingleObject(child.hProcess, INFINITE);
        DWORD status = 0;
        GetExitCodeProcess(child.hProcess, &status);
        const bool isException = status >= 0xC0000000;
        end.kind = isLate        ? ChildEnd::Kind::TimedOut
                   : isException ? ChildEnd::Kind::Crashed
                                 : ChildEnd::Kind::Exited;
        end.status = status;
        CloseHandle(child.hThread);
        CloseHandle(child.hProcess);
    }
    CloseHandle(reading);
    return end;
}

#else

namespace {

// False when the time is over before the end of the text.
bool readAll(int pipe, std::chrono::seconds limit, std::string& text) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    char buffer[4096];
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        pollfd waiting{pipe, POLLIN, 0};
        if (poll(&waiting, 1, static_cast<int>(left.count())) <= 0) continue;
        const ssize_t count = read(pipe, buffer, sizeof buffer);
        if (count > 0)
            text.append(buffer, static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            return true;
    }
}

} // namespace

ChildEnd runAgain(char** argv, const std::vector<std::string>& moreArguments, std::chrono::seconds limit) {
    ChildEnd end;
    std::vector<char*> arguments;
    for (char** argument = argv; *argument; ++argument) arguments.push_back(*argument);
    for (const std::string& argument : moreArguments)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);

    int ends[2];
    if (pipe(ends) != 0) return end;
    fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
#ifdef __linux__
    const char* const program = "/proc/self/exe";
#else
    const char* const program = argv[0];
#endif
    pid_t child = 0;
    const bool isStarted = posix_spawnp(&child, program, &actions, nullptr, arguments.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (isStarted) {
        const bool isLate = !readAll(ends[0], limit, end.output);
        if (isLate) kill(child, SIGKILL);
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
        end.kind = isLate                ? ChildEnd::Kind::TimedOut
                   : WIFSIGNALED(status) ? ChildEnd::Kind::Crashed
                                         : ChildEnd::Kind::Exited;
        end.status = static_cast<unsigned int>(WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status));
    }
    close(ends[0]);
    return end;
}

#endif

} // namespace kvSubstance::conformance
