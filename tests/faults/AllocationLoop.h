// Runs an operation again and again with another of its allocations failing each time, and says what a host
// would not forgive.
#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <string>

namespace faults {

// The objects of one trial, which live in the functions.
struct Scene {
    std::function<void()> act;          // the operation; allocations fail in it alone
    std::function<std::string()> look;  // its result and the objects as they are, as text
    std::function<std::string()> probe; // what they do next, once
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
    Promise promise;
    bool counts;
};

// Every allocation of the operation fails once, alone and then with all behind it; in each trial the
// operation succeeds or fails as promised, the same call works afterwards, and nothing leaks but what TinyXML
// loses, which the leak sanitizer is told to let pass. The exemption is for allocations of the test's own
// (FailingAllocations.h).
void failEveryAllocation(const Operation& operation, bool (*isExempt)());

// An operation on a world of objects, which is made anew for each trial.
template <class World>
struct Row {
    const char* name;
    void (*prepare)(World&);
    void (*act)(World&);
    Promise promise = Promise::Strong;
    bool counts = true; // blocks that are left; not where caches keep some, or TinyXML loses some
};

template <class World>
void PrintTo(const Row<World>& row, std::ostream* stream) {
    *stream << row.name;
}

template <class World>
void failEveryAllocation(const Row<World>& row, bool (*isExempt)()) {
    const auto prepare = [&row] {
        const auto world = std::make_shared<World>();
        row.prepare(*world);
        return Scene{[&row, world] { row.act(*world); }, [world] { return world->look(); },
                     [world] { return world->probe(); }};
    };
    failEveryAllocation(Operation{row.name, prepare, row.promise, row.counts}, isExempt);
}

} // namespace faults
