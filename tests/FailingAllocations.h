// Replaces the global operators new and delete of the program it is linked into, and of the shared libraries
// that the program loads, but on Windows, where each has its own: allocations fail at will, and those alive
// are counted, with their bytes.
#pragma once

#include <cstddef>

namespace allocations {

enum class Failing { Once, FromThere };

// From now on the allocation of that number, on whichever thread, throws std::bad_alloc, or it and all behind
// it. The first is 0.
void fail(long number, Failing how);
long stopFailing(); // how many have failed since

// Allocations for which this is true, of the thread that makes them, neither fail nor count.
void exempt(bool (*isExempt)());

long alive(); // blocks

void startPeak();
std::size_t peak(); // the most bytes alive at once since then, less those alive then

} // namespace allocations
