#include "embedded/engine/PhysicalMemory.h"

#include <limits>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace embedded {

std::uint64_t physicalMemory() {
#ifdef _WIN32
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    if (GlobalMemoryStatusEx(&status)) return status.ullTotalPhys;
#else
    const auto pages = sysconf(_SC_PHYS_PAGES);
    const auto pageSize = sysconf(_SC_PAGESIZE);
    if (pages > 0 && pageSize > 0)
        return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize);
#endif
    return std::numeric_limits<std::uint64_t>::max();
}

} // namespace embedded
