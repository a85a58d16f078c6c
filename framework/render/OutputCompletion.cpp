#include "framework/render/OutputCompletion.h"

#include "framework/render/OutputInstance.h"
#include "framework/render/RenderJob.h"
#include "framework/render/RenderResult.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <utility>

namespace SubstanceAir {

namespace {

// The position of the job's output of that uid; the number of outputs when there is none.
size_t findOutput(const RenderJob& job, unsigned int uid) {
    const auto hasLowerUid = [](const JobOutput& output, unsigned int key) {
        return output.instance->desc.uid < key;
    };
    const auto found = std::lower_bound(job.outputs.begin(), job.outputs.end(), uid, hasLowerUid);
    if (found == job.outputs.end() || found->instance->desc.uid != uid) return job.outputs.size();
    return static_cast<size_t>(found - job.outputs.begin());
}

// Null when there is no texture to be had. A buffer, once fetched, is always owned by a result.
std::unique_ptr<RenderResult> fetchResult(SubstanceHandle* handle, unsigned int outputIndex,
                                          const RenderJob& job) {
    SubstanceTexture texture{};
    if (substanceHandleGetOutputs(handle, 0, outputIndex, 1, &texture) != 0) return nullptr;
    SubstanceContext* context = substanceHandleGetParentContext(handle);
    if (!context) context = job.engineContext.get(); // a buffer without its context could never be freed
    std::unique_ptr<RenderResult> result(new (std::nothrow)
                                             RenderResult(texture, context, job.engineContext));
    if (!result && texture.buffer) substanceContextMemoryFree(context, texture.buffer);
    const bool isEmpty = !texture.buffer || texture.level0Width == 0 || texture.level0Height == 0;
    return isEmpty ? nullptr : std::move(result);
}

bool deliver(SubstanceHandle* handle, unsigned int outputIndex, const RenderJob& job,
             const JobOutput& output) noexcept {
    try {
        std::unique_ptr<RenderResult> result = fetchResult(handle, outputIndex, job);
        if (!result) return false;
        result->isLate = output.runs > 1;
        output.instance->appendResult(std::move(result));
        return true;
    } catch (...) {
        return false; // nothing may be thrown into the engine
    }
}

} // namespace

void awaitOutputs(RenderJob& job, const std::shared_ptr<SubstanceContext>& engineContext) {
    job.engineContext = engineContext;
    job.outcomes = std::vector<std::atomic<OutputOutcome>>(job.outputs.size());
}

void completeOutput(SubstanceHandle* handle, unsigned int outputIndex, RenderJob& job) noexcept {
    SubstanceOutputDesc desc{};
    if (substanceHandleGetOutputDesc(handle, outputIndex, &desc) != 0) return;
    const size_t position = findOutput(job, desc.uid);
    if (position == job.outputs.size()) return;
    // None that came is fetched again. An engine that hands a texture over twice would leave one in the
    // queue, and hosts, who take the oldest, would see old pictures from then on.
    std::atomic<OutputOutcome>& outcome = job.outcomes[position];
    OutputOutcome expected = OutputOutcome::Awaited;
    if (!outcome.compare_exchange_strong(expected, OutputOutcome::Fetching)) return;
    const bool isDelivered = deliver(handle, outputIndex, job, job.outputs[position]);
    outcome = isDelivered ? OutputOutcome::Delivered : OutputOutcome::Awaited;
}

void dropDelivered(RenderJob& job) {
    size_t kept = 0;
    for (size_t i = 0; i < job.outputs.size(); ++i) {
        const bool isDelivered = i < job.outcomes.size() && job.outcomes[i] == OutputOutcome::Delivered;
        if (!isDelivered) job.outputs[kept++] = job.outputs[i];
    }
    job.outputs.erase(job.outputs.begin() + static_cast<std::ptrdiff_t>(kept), job.outputs.end());
    job.outcomes.clear();
}

void settleOutputs(const RenderJob& job) {
    if (!job.pushed) return; // nothing was asked for
    for (size_t i = 0; i < job.outcomes.size(); ++i)
        if (job.outcomes[i] != OutputOutcome::Delivered) job.outputs[i].instance->dirty = true;
}

} // namespace SubstanceAir
