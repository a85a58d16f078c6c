// How much memory the images of one engine context may take before those of earlier runs give way.
#pragma once

#include <cstdint>

namespace embedded {

// In bytes: what the environment variable KVSUBSTANCE_ENGINE_MEMORY says in MiB, 0 to 1048576; 512 MiB
// otherwise.
std::uint64_t memoryBudget();

} // namespace embedded
