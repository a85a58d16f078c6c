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

#if defined(_WIN32)
using Library = HMODULE;
Library load(const char* path) {
    return LoadLibraryA(path);
}
void unload(Library library) {
    FreeLibrary(library);
}
void* find(Library library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(library, name));
}
#else
using Library = void*;
Library load(const char* path) {
    return dlopen(path, RTLD_NOW);
}
void unload(Library library) {
    dlclose(library);
}
void* find(Library library, const char* name) {
    return dlsym(library, name);
}
#endif

struct Plugin {
    explicit Plugin(const char* path)
        : library(load(path))
        , makeMaterial(function<bool(const char*, const char*)>("makeMaterial"))
        , renderOnce(function<bool()>("renderOnce"))
        , keepMaterial(function<void()>("keepMaterial"))
        , renderForEver(function<void()>("renderForEver"))
        , countRenders(function<int()>("countRenders")) {}

    template <class Signature>
    Signature* function(const char* name) const {
        return library ? reinterpret_cast<Signature*>(find(library, name)) : nullptr;
    }

    void waitForRenders() const {
        while (countRenders() < 3) std::this_thread::yield();
    }

    Library library;
    bool (*makeMaterial)(const char*, const char*);
    bool (*renderOnce)();
    void (*keepMaterial)();
    void (*renderForEver)();
    int (*countRenders)();
};

#if !defined(_WIN32)

// Whether a child that does this ends by itself with status 0.
template <class Act>
bool endsWell(const Act& act) {
    const pid_t child = fork();
    if (child == 0) {
        act();
        std::exit(0); // static objects die, without the threads that the parent has
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// The library is closed in a child: the parent's texture is all that there is.
bool forkChildren(const Plugin& plugin, char** argv) {
    const std::string ending = argv[1];
    std::string program = argv[0], plainly = "return";
    char* const again[] = {program.data(), plainly.data(), argv[2], argv[3], argv[4], nullptr};
    if (!endsWell([] {}) || !endsWell([] { _exit(0); }) || !endsWell([&] { execv(again[0], again); }))
        return false;
    if (ending == "fork_interrupt")
        return true; // other threads may have left the C library's own locks taken
    return endsWell([&] {
               if (!plugin.renderOnce()) _exit(1);
           }) &&
           endsWell([&] {
               if (plugin.makeMaterial(argv[3], argv[4])) _exit(1);
           }) &&
           endsWell([&] { unload(plugin.library); });
}

#endif

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const std::string ending = argv[1];
    for (int load = 0; load < (ending == "reload" ? 3 : 1); ++load) {
        const Plugin plugin(argv[2]);
        if (!plugin.library) {
            std::cerr << argv[2] << " cannot be loaded\n";
            return 1;
        }
        if (!plugin.makeMaterial(argv[3], argv[4])) {
            std::cerr << "there is no texture\n";
            return 1;
        }
        if (ending.find("load") != std::string::npos) unload(plugin.library);
        if (ending.find("interrupt") != std::string::npos) {
            plugin.keepMaterial();
            std::thread(plugin.renderForEver).detach();
            plugin.waitForRenders();
        }
        if (ending == "exit_beside") {
            plugin.keepMaterial();
            std::thread([plugin] {
                plugin.waitForRenders();
                std::exit(0);
            }).detach();
            plugin.renderForEver();
        }
#if !defined(_WIN32)
        if (ending.find("fork") != std::string::npos && !forkChildren(plugin, argv)) {
            std::cerr << "a child did not end well\n";
            return 1;
        }
#endif
        if (ending == "fork" && !plugin.renderOnce()) return 1;
    }
    return 0;
}
