#include "framework/render/OutputCompletion.h"

#include "framework/render/OutputInstance.h"
#include "framework/render/RenderJob.h"
#include "framework/render/RenderResult.h"

#include <algorithm>
#include <new>
#include <utility>

namespace SubstanceAir {

namespace {

// The position of the job's output of that uid; the number of outputs when there is none.
size_t findOutput(const RenderJob& job, unsigned int uid) {
    const auto hasLowerUid = [](const OutputInstance* output, unsigned int key) {
        return output->desc.uid < key;
    };
    const auto found = std::lower_bound(job.outputs.begin(), job.outputs.end(), uid, hasLowerUid);
    if (found == job.outputs.end() || (*found)->desc.uid != uid) return job.outputs.size();
    return static_cast<size_t>(found - job.outputs.begin());
}

// Null when there is no texture to be had. A buffer, once fetched, is always owned by a result.
std::unique_ptr<RenderResult> fetchResult(SubstanceHandle* handle, unsigned int outputIndex,
                                          const RenderJob& job) {
    SubstanceTexture texture{};
    if (substanceHandleGetOutputs(handle, 0, outputIndex, 1, &texture) != 0) return nullptr;
    SubstanceContext* const context = substanceHandleGetParentContext(handle);
    std::unique_ptr<RenderResult> result(new (std::nothrow)
                                             RenderResult(texture, context, job.engineContext));
    if (!result && texture.buffer) substanceContextMemoryFree(context, texture.buffer);
    const bool isEmpty = !texture.buffer || texture.level0Width == 0 || texture.level0Height == 0;
    return isEmpty ? nullptr : std::move(result);
}

bool deliver(SubstanceHandle* handle, unsigned int outputIndex, const RenderJob& job,
             OutputInstance& output) noexcept {
    try {
        std::unique_ptr<RenderResult> result = fetchResult(handle, outputIndex, job);
        if (!result) return false;
        output.appendResult(std::move(result));
        return true;
    } catch (...) {
        return false; // nothing may be thrown into the engine
    }
}

// An output that is reported again after its texture was taken stays delivered, whichever report ends first.
void markFailed(std::atomic<OutputOutcome>& outcome) {
    OutputOutcome expected = OutputOutcome::Awaited;
    outcome.compare_exchange_strong(expected, OutputOutcome::Failed);
}

} // namespace

void awaitOutputs(RenderJob& job, const std::shared_ptr<const void>& engineContext) {
    job.engineContext = engineContext;
    job.outcomes = std::vector<std::atomic<OutputOutcome>>(job.outputs.size());
}

void completeOutput(SubstanceHandle* handle, unsigned int outputIndex, RenderJob& job) noexcept {
    SubstanceOutputDesc desc{};
    if (substanceHandleGetOutputDesc(handle, outputIndex, &desc) != 0) {
        // It may be any of them; those that still arrive are not rendered again.
        for (auto& outcome : job.outcomes) markFailed(outcome);
        return;
    }
    const size_t position = findOutput(job, desc.uid);
    if (position == job.outputs.size()) return;
    if (deliver(handle, outputIndex, job, *job.outputs[position]))
        job.outcomes[position] = OutputOutcome::Delivered;
    else
        markFailed(job.outcomes[position]);
}

void dropDelivered(RenderJob& job) {
    size_t kept = 0;
    for (size_t i = 0; i < job.outputs.size(); ++i) {
        const bool isDelivered = i < job.outcomes.size() && job.outcomes[i] == OutputOutcome::Delivered;
        if (!isDelivered) job.outputs[kept++] = job.outputs[i];
    }
    job.outputs.resize(kept);
    job.outcomes.clear();
}

void settleOutputs(const RenderJob& job) {
    for (size_t i = 0; i < job.outcomes.size(); ++i)
        if (job.outcomes[i] == OutputOutcome::Failed) job.outputs[i]->dirty = true;
}

} // namespace SubstanceAir
