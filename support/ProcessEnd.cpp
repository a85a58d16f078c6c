#include "support/ProcessEnd.h"

#if defined(_WIN32)
#include <windows.h>
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

void stayLoaded() {
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&stayLoaded), &self);
}

#else

bool isProcessEnding() {
    return false;
}

void stayLoaded() {}

#endif

} // namespace support
