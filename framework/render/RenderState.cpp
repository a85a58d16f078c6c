#include "framework/render/RenderState.h"

#include "framework/description/InputType.h"
#include "framework/render/OutputCompletion.h"
#include "framework/render/OutputInstance.h"
#include "framework/render/PackageRegistry.h"

#include <boost/thread/lock_guard.hpp>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace SubstanceAir {

namespace {

using Lock = boost::lock_guard<boost::mutex>;

struct LinkerHandleRelease {
    void operator()(SubstanceLinkerHandle* handle) const { substanceLinkerHandleRelease(handle); }
};

// For an image the raw data holds the pointer itself.
const void* valuePointer(const InputValueSnapshot& input) {
    if (input.type != Image) return input.value.data();
    const void* texture = nullptr;
    std::memcpy(&texture, input.value.data(), sizeof texture);
    return texture;
}

// Jobs without outputs have nothing to render.
void dropEmpty(std::vector<std::unique_ptr<RenderJob>>& jobs) {
    const auto isEmpty = [](const auto& job) { return job->outputs.empty(); };
    jobs.erase(std::remove_if(jobs.begin(), jobs.end(), isEmpty), jobs.end());
}

} // namespace

// ---- Jobs from the host's threads

bool RenderState::accepts(const RenderJob& job) const {
    if (keys.empty()) return true;
    return keys.front().packageUid == job.packageUid && keys.front().bytes == job.keyBytes;
}

bool RenderState::matches(const RenderJob& job) const {
    const Lock lock(mutex);
    return accepts(job);
}

bool RenderState::push(std::unique_ptr<RenderJob>&& job) {
    const Lock lock(mutex);
    if (!accepts(*job)) {
        job.reset();
        return false;
    }
    // The key first: a state that serves a graph has one, also when memory runs out in between.
    const StateKey key{job->packageUid, job->keyBytes};
    if (std::find(keys.begin(), keys.end(), key) == keys.end()) keys.push_back(key);
    graphs.insert(job->graphIdentity);
    sortByUid(*job);
    enqueue(job);
    return true;
}

void RenderState::enqueue(std::unique_ptr<RenderJob>& job) {
    for (const auto& waiting : pending) {
        if (waiting->packageUid != job->packageUid) continue;
        mergeInto(*waiting, *job);
        job.reset();
        return;
    }
    pending.push_back(std::move(job));
}

bool RenderState::updateKey(std::uint64_t graphIdentity, const std::vector<unsigned char>& newBytes) {
    const Lock lock(mutex);
    if (graphs.size() != 1 || graphs.count(graphIdentity) == 0) return false;
    // A state that serves a graph has a key. Kept as a fault with these words, which hosts know from their
    // logs.
    if (keys.empty()) throw std::out_of_range("invalid vector<T> subscript");
    keys.front().bytes = newBytes;
    return true;
}

bool RenderState::hasPackage(unsigned int packageUid) const {
    const Lock lock(mutex);
    return std::any_of(keys.begin(), keys.end(),
                       [packageUid](const StateKey& key) { return key.packageUid == packageUid; });
}

void RenderState::countRun() {
    const Lock lock(mutex);
    for (const auto& job : pending)
        for (JobOutput& output : job->outputs) ++output.runs;
}

void RenderState::forgetOutputs(const std::function<bool(const OutputInstance*)>& isForgotten) {
    const auto isDropped = [&isForgotten](const JobOutput& output) { return isForgotten(output.instance); };
    const Lock lock(mutex);
    for (const auto& job : pending)
        job->outputs.erase(std::remove_if(job->outputs.begin(), job->outputs.end(), isDropped),
                           job->outputs.end());
    dropEmpty(pending);
}

// ---- The handle

bool RenderState::isWaiting() const {
    const Lock lock(mutex);
    return !pending.empty();
}

std::vector<unsigned int> RenderState::waitingPackages() const {
    const Lock lock(mutex);
    std::vector<unsigned int> uids;
    for (const auto& job : pending) uids.push_back(job->packageUid);
    return uids;
}

bool RenderState::makeHandle(SubstanceLinkerContext* linkerContext, SubstanceContext* engineContext,
                             const PackageRegistry& packages) {
    // Without jobs there is nothing to link. It happens when the graphs have died that the jobs were for.
    if (assembly.empty() && (!isWaiting() || link(linkerContext, packages) != 0)) return false;
    return initialiseHandle(engineContext) == 0;
}

unsigned int RenderState::link(SubstanceLinkerContext* linkerContext, const PackageRegistry& packages) {
    SubstanceLinkerHandle* linkerHandle = nullptr;
    substanceLinkerHandleInit(&linkerHandle, linkerContext); // a failure shows in the calls that follow
    std::unique_ptr<SubstanceLinkerHandle, LinkerHandleRelease> owner(linkerHandle);
    packages.pushToLinker(waitingPackages(), linkerHandle);

    const unsigned char* data = nullptr;
    size_t size = 0;
    if (const unsigned int status = substanceLinkerHandleLink(linkerHandle, &data, &size)) {
        // Kept: a handle that failed to link is left to the linker, which frees it with its context. Linkers
        // hold on to such a handle to report what was wrong with it.
        static_cast<void>(owner.release());
        return status;
    }
    if (data) assembly.assign(data, data + size); // it dies with the linker handle
    return 0;
}

unsigned int RenderState::initialiseHandle(SubstanceContext* engineContext) {
    if (assembly.empty()) return 1;
    handle.reset();
    SubstanceHandle* made = nullptr;
    if (const unsigned int status =
            substanceHandleInit(&made, engineContext, assembly.data(), assembly.size(), 0))
        return status;
    HandleOwner owner(made);
    EngineInputs inputs;
    if (const unsigned int status = readInputs(made, inputs)) return status;
    handle = std::move(owner);
    engineInputs = std::move(inputs);
    lastPushed.clear();
    return 0;
}

unsigned int RenderState::readInputs(SubstanceHandle* fresh, EngineInputs& inputs) {
    SubstanceDataDesc desc{};
    if (const unsigned int status = substanceHandleGetDesc(fresh, &desc)) return status;
    for (unsigned int index = 0; index < desc.inputsCount; ++index) {
        SubstanceInputDesc input{};
        if (const unsigned int status = substanceHandleGetInputDesc(fresh, index, &input)) return status;
        input.index = index;
        inputs.emplace(input.uid, input);
    }
    return 0;
}

// ---- A run

void RenderState::run(SubstanceLinkerContext* linkerContext,
                      const std::shared_ptr<SubstanceContext>& engineContext,
                      const PackageRegistry& packages) {
    if (!linkerContext || !engineContext) return;
    bool isRendered = false;
    try {
        if (!handle && !makeHandle(linkerContext, engineContext.get(), packages)) return;
        takePending();
        isRendered = renderCurrent(engineContext);
    } catch (...) {
        // Want of memory is a failure like the engine's.
    }
    if (!isRendered) putBack();
    current.clear();
}

// In reverse order of arrival.
void RenderState::takePending() {
    const Lock lock(mutex);
    current.swap(pending);
    std::reverse(current.begin(), current.end());
}

bool RenderState::renderCurrent(const std::shared_ptr<SubstanceContext>& engineContext) {
    pushedNow.clear();
    for (const auto& job : current) awaitOutputs(*job, engineContext);
    if (!pushJobs()) return false;
    pushHints();
    if (isStartDue) {
        isStartDue = false;
        if (substanceHandleStart(handle.get(), 0) != 0) return false;
    }
    for (const auto& job : current) settleOutputs(*job);
    return true;
}

// False when outputs could not be pushed.
bool RenderState::pushJobs() {
    for (const auto& job : current) {
        const bool isChanged = pushChangedInputs(*job);
        job->pushed = isChanged || job->inputs.empty() || job->forced;
        if (!job->pushed) continue;
        if (!pushOutputs(*job, SubstancePushOutputUids)) return false;
        isStartDue = true;
    }
    return true;
}

// Tells the engine what is likely to come again; whether it listens makes no difference to the run.
void RenderState::pushHints() {
    for (const auto& job : current) {
        if (!job->pushed && !job->forced) continue;
        for (const InputValueSnapshot& input : job->inputs)
            if (!input.isStateKey) pushInput(input, SubstancePushInputHint);
        pushOutputs(*job, SubstancePushOutputUidsHint);
    }
}

// Whether any was pushed. When one is refused the job is rendered without it, and its outputs are out of date
// all the same: the next job tries again.
bool RenderState::pushChangedInputs(const RenderJob& job) {
    bool isChanged = false;
    for (const InputValueSnapshot& input : job.inputs) {
        if (engineInputs.count(input.uid) == 0) continue;
        const auto last = lastPushed.find(input.uid);
        if (last != lastPushed.end() && last->second.value == input.value) continue;
        // Forgotten first: after a failure nobody knows what the handle holds.
        if (last != lastPushed.end()) lastPushed.erase(last);
        if (!pushInput(input, SubstancePushInput)) {
            returnOutputs(job);
            continue;
        }
        pushedNow.push_back(input.uid);
        lastPushed.emplace(input.uid, input);
        isChanged = true;
    }
    return isChanged;
}

// False also for an input that the engine does not know, which may be one that the linker optimised away.
bool RenderState::pushInput(const InputValueSnapshot& input, unsigned int flags) {
    const auto known = engineInputs.find(input.uid);
    if (known == engineInputs.end()) return false;
    return substanceHandlePushSetInput(handle.get(), flags, known->second.index, static_cast<int>(input.type),
                                       valuePointer(input), 0) == 0;
}

bool RenderState::pushOutputs(RenderJob& job, unsigned int flags) {
    std::vector<unsigned int> uids;
    uids.reserve(job.outputs.size());
    for (const JobOutput& output : job.outputs) uids.push_back(output.instance->desc.uid);
    return substanceHandlePushOutputs(handle.get(), flags, uids.data(),
                                      static_cast<unsigned int>(uids.size()), &job) == 0;
}

// The jobs wait again, in their order of arrival and before newer ones, and the next run pushes everything
// that this one pushed.
void RenderState::putBack() {
    for (const unsigned int uid : pushedNow) lastPushed.erase(uid);
    if (isStartDue)
        handle.reset(); // it holds the addresses of jobs, which may die before they are pushed again
    isStartDue = false;
    for (const auto& job : current) {
        dropDelivered(*job);
        job->engineContext.reset();
    }
    dropEmpty(current);
    std::reverse(current.begin(), current.end());

    const Lock lock(mutex);
    if (current.empty()) return; // none was taken, or all is delivered
    current.swap(pending);
    for (auto& newer : current) {
        try {
            enqueue(newer);
        } catch (...) {
            returnOutputs(*newer);
        }
    }
}

} // namespace SubstanceAir
