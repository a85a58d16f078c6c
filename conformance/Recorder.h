// The callbacks that clauses hand to linkers and engines. The C functions know no user data of a linker's
// callback, so what arrives is kept for the whole process; any thread may call.
#pragma once

#include "platform/engine.h"
#include "platform/linker.h"

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace kvSubstance::conformance {

// A call of the linker's.
struct Delivery {
    SubstanceLinkerHandle* handle;
    unsigned int index;
    bool isText; // or bytes
    std::string content;
    std::thread::id thread;
};

// A call of the engine's.
struct Completion {
    SubstanceHandle* handle;
    unsigned int outputIndex;
    void* jobUserData;
};

SubstanceLinkerCallback textRecorder();
SubstanceLinkerCallback bytesRecorder();
SubstanceCallback completionRecorder();

// What came since the last call.
std::vector<Delivery> takeDeliveries();
std::vector<Completion> takeCompletions();

// For its own lifetime each completion calls the function, on the engine's thread, which must not throw.
class DuringCompletions {
public:
    explicit DuringCompletions(std::function<void(const Completion&)> function);
    ~DuringCompletions();
    DuringCompletions(const DuringCompletions&) = delete;
    DuringCompletions& operator=(const DuringCompletions&) = delete;
};

} // namespace kvSubstance::conformance
