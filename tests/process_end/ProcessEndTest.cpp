// Renders through a library that it loads, and ends:
//
//   process_end_test (return | unload | interrupt) library bottom.kvpkg top.kvpkg
//
// "interrupt" ends in the middle of a render.
#include <iostream>
#include <string>
#include <thread>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
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

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const std::string ending = argv[1];
    const Library library = load(argv[2]);
    if (!library) {
        std::cerr << argv[2] << " cannot be loaded\n";
        return 1;
    }
    const auto makeMaterial =
        reinterpret_cast<bool (*)(const char*, const char*)>(find(library, "makeMaterial"));
    if (!makeMaterial(argv[3], argv[4])) {
        std::cerr << "there is no texture\n";
        return 1;
    }
    if (ending == "unload") unload(library);
    if (ending == "interrupt")
        std::thread(reinterpret_cast<void (*)()>(find(library, "renderForEver"))).detach();
    return 0;
}
