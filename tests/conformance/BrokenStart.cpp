// A start that comes to a bad end, as the environment says, in front of the example's.
#include "platform/engine.h"

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <string>

extern "C" unsigned int workingHandleStart(SubstanceHandle* handle, unsigned int flags);

extern "C" unsigned int substanceHandleStart(SubstanceHandle* handle, unsigned int flags) {
    const char* const wanted = std::getenv("KVSUBSTANCE_BROKEN_START");
    const std::string end = wanted ? wanted : "";
    if (end == "crash") *static_cast<volatile int*>(nullptr) = 0;
    if (end == "exit") std::exit(0);
    if (end == "hang") {
        std::mutex mutex;
        std::unique_lock<std::mutex> lock(mutex);
        std::condition_variable never;
        never.wait(lock, [] { return false; });
    }
    return workingHandleStart(handle, flags);
}
