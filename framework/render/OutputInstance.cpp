#include "framework/render/OutputInstance.h"

#include "framework/render/ProcessObjects.h"

#include <utility>

namespace SubstanceAir {

namespace {

// Locks nothing when the process is exiting.
boost::unique_lock<boost::mutex> lockResults() {
    ProcessObjects* const objects = processObjects();
    if (!objects) return {};
    return boost::unique_lock<boost::mutex>(objects->resultMutex);
}

} // namespace

OutputInstance::OutputInstance(const OutputDesc& description)
    : desc(description) {}

OutputInstance::~OutputInstance() = default;

// One at a time: the mutex is not held while the engine frees a buffer.
std::unique_ptr<RenderResult> OutputInstance::grabResult() {
    std::unique_ptr<RenderResult> oldest = takeOldest();
    while (oldest && oldest->isLate) {
        std::unique_ptr<RenderResult> newer = takeOldest();
        if (!newer) break;
        oldest = std::move(newer);
    }
    return oldest;
}

void OutputInstance::appendResult(std::unique_ptr<RenderResult> result) {
    const auto lock = lockResults();
    results.push_back(std::move(result));
}

std::unique_ptr<RenderResult> OutputInstance::takeOldest() {
    const auto lock = lockResults();
    if (results.empty()) return nullptr;
    std::unique_ptr<RenderResult> oldest = std::move(results.front());
    results.pop_front();
    return oldest;
}

} // namespace SubstanceAir
