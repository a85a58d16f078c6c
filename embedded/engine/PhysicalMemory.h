#pragma once

#include <cstdint>

namespace embedded {

// Bytes of main memory in this machine; the largest number when the system does not tell.
std::uint64_t physicalMemory();

} // namespace embedded
