#include "framework/render/OutputInstance.h"

#include "framework/render/ProcessObjects.h"

#include <algorithm>
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

std::unique_ptr<RenderResult> OutputInstance::grabResult() {
    const auto lock = lockResults();
    if (results.empty()) return nullptr;
    std::unique_ptr<RenderResult> oldest = std::move(results.front());
    results.pop_front();
    return oldest;
}

void OutputInstance::appendResult(std::unique_ptr<RenderResult> result) {
    const auto lock = lockResults();
    results.push_back(std::move(result));
}

// One at a time, as the mutex is held for one only, and not while the engine frees a buffer.
void OutputInstance::dropLateResults() {
    while (takeLateResult()) {
    }
}

std::unique_ptr<RenderResult> OutputInstance::takeLateResult() {
    const auto lock = lockResults();
    const auto late =
        std::find_if(results.begin(), results.end(), [](const auto& result) { return result->isLate; });
    if (late == results.end()) return nullptr;
    std::unique_ptr<RenderResult> taken = std::move(*late);
    results.erase(late);
    return taken;
}

} // namespace SubstanceAir
