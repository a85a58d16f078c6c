// Runs an operation again and again with another of its allocations failing each time, and says what a host
// would not forgive.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace faults {

// The objects of one trial, which live in the functions.
struct Scene {
    std::function<void()> act;         // the operation; allocations fail in it alone
    std::function<std::string()> look; // its result and the objects as they are, as text
    std::function<std::string()> probe = [] { return std::string(); }; // what they do next, once
};

// What a failure may come to; an exception is std::bad_alloc, and silence is what look tells without one.
enum class Promise {
    Strong, // an exception, and nothing has changed
    Basic,  // an exception, and the same call again does what it would have done
    Silent, // an exception, or silence, and nothing has changed
};

struct Operation {
    const char* name;
    std::function<Scene()> prepare;
    Promise promise = Promise::Strong;
    bool counts = true; // false when the process keeps more or less from trial to trial, as caches do
};

inline void PrintTo(const Operation& operation, std::ostream* stream) {
    *stream << operation.name;
}

// Every allocation of the operation fails once, alone and then with all behind it; in each trial the
// operation succeeds or fails as promised, the same call works afterwards, and nothing leaks but what TinyXML
// loses. The exemption is for allocations of the test's own
// (FailingAllocations.h).
void failEveryAllocation(const Operation& operation, bool (*isExempt)());

} // namespace faults
