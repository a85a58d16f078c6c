// Renders through a library that it loads, and ends:
//
//   process_end_test ENDING library bottom.kvpkg top.kvpkg
//
//   return          from main
//   unload          the same, after the library was unloaded
//   reload          unloads the library, loads it and renders again, and that once more
//   interrupt       in the middle of a render on another thread
//   exit_beside     on another thread, in the middle of a render on this one
//   fork            after children that do one thing or the other and end by themselves
//   fork_interrupt  the same in the middle of a render on another thread
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

using Act = bool(const char* action, const char* bottomPath, const char* topPath);

#if defined(_WIN32)
const auto load = [](const char* path) { return LoadLibraryA(path); };
const auto find = [](HMODULE library) { return reinterpret_cast<void*>(GetProcAddress(library, "act")); };
const auto unload = [](HMODULE library) { FreeLibrary(library); };
#else
const auto load = [](const char* path) { return dlopen(path, RTLD_NOW); };
const auto find = [](void* library) { return dlsym(library, "act"); };
const auto unload = [](void* library) { dlclose(library); };
#endif

struct Plugin {
    bool operator()(const char* action) const {
        return reinterpret_cast<Act*>(find(library))(action, arguments[3], arguments[4]);
    }
    char** arguments;
    decltype(load("")) library = load(arguments[2]);
};

#if !defined(_WIN32)

// Whether a child that does this ends by itself with status 0.
template <class ChildAct>
bool endsWell(const ChildAct& childAct) {
    const pid_t child = fork();
    if (child == 0) {
        childAct();
        std::exit(0); // static objects die, without the threads that the parent has
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// The library is closed in a child: the parent's texture is all that there is.
bool forkChildren(const Plugin& plugin, const std::string& ending) {
    std::string plainly = "return";
    char** const arguments = plugin.arguments;
    char* const again[] = {arguments[0], plainly.data(), arguments[2], arguments[3], arguments[4], nullptr};
    if (!endsWell([] {}) || !endsWell([] { _exit(0); }) || !endsWell([&] { execv(again[0], again); }))
        return false;
    if (ending == "fork_interrupt")
        return true; // other threads may have left the C library's own locks taken
    const auto isClosed = [&plugin](const char* action, bool succeeds) {
        return endsWell([&] {
            if (plugin(action) != succeeds) _exit(1);
        });
    };
    return isClosed("render", true) && isClosed("make", false) && endsWell([&] { unload(plugin.library); });
}

#else

bool forkChildren(const Plugin& /*plugin*/, const std::string& /*ending*/) {
    return false;
}

#endif

void end(const Plugin& plugin, const std::string& ending) {
    const auto renderForEver = [plugin] { plugin("render for ever"); };
    if (ending.find("load") != std::string::npos) unload(plugin.library);
    if (ending.find("interrupt") != std::string::npos) {
        plugin("keep");
        std::thread(renderForEver).detach();
        plugin("wait for renders");
    }
    if (ending == "exit_beside") {
        plugin("keep");
        std::thread([plugin] {
            plugin("wait for renders");
            std::exit(0);
        }).detach();
        renderForEver();
    }
    if (ending.find("fork") != std::string::npos && !forkChildren(plugin, ending)) {
        std::cerr << "a child did not end well\n";
        std::exit(1);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const std::string ending = argv[1];
    for (int round = 0; round < (ending == "reload" ? 3 : 1); ++round) {
        const Plugin plugin{argv};
        if (!plugin.library || !plugin("make")) {
            std::cerr << argv[2] << " cannot be loaded, or gives no texture\n";
            return 1;
        }
        end(plugin, ending);
        if (ending == "fork" && !plugin("render")) return 1;
    }
    return 0;
}
