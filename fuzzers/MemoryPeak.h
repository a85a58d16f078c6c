// How much is allocated at most while something runs, where the address sanitizer counts it.
#pragma once

#include <cstddef>

namespace fuzzing {

// One at a time. Allocations of all threads count.
class MemoryPeak {
public:
    MemoryPeak();

    // The most bytes that were there at any moment since, beyond those that were there then. 0 in builds that
    // do not count.
    std::size_t bytes() const;
};

// What loading n bytes of a package or of a description may take.
void requireLoadingBound(const MemoryPeak& peak, std::size_t size);

} // namespace fuzzing
