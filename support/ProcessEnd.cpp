#include "support/ProcessEnd.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <atomic>
#include <pthread.h>
#endif

namespace support {

#if defined(_WIN32)

namespace {

using Query = BOOLEAN(NTAPI*)();

Query findQuery() {
    const HMODULE system = GetModuleHandleW(L"ntdll.dll");
    return system ? reinterpret_cast<Query>(
                        reinterpret_cast<void*>(GetProcAddress(system, "RtlDllShutdownInProgress")))
                  : nullptr;
}

// Found when the library is loaded, so that no lock is needed later. Null before: then nothing ends yet.
const Query isShutdownInProgress = findQuery();

} // namespace

bool isProcessEnding() {
    return isShutdownInProgress && isShutdownInProgress();
}

void prepareForThreads() {
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&prepareForThreads), &self);
}

#else

namespace {

std::atomic<bool> hasLostThreads{false};

} // namespace

bool isProcessEnding() {
    return hasLostThreads;
}

// The child of a fork is told, and does not ask: to ask for the process's number is a call into the system.
void prepareForThreads() {
    [[maybe_unused]] static const int registered =
        pthread_atfork(nullptr, nullptr, [] { hasLostThreads = true; });
}

#endif

} // namespace support
