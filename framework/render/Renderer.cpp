#include "framework/render/Renderer.h"

#include "framework/description/PackageDesc.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/OutputCompletion.h"
#include "support/ProcessEnd.h"

#include <boost/thread/lock_guard.hpp>

#include <algorithm>
#include <utility>

namespace SubstanceAir {

using Lock = boost::lock_guard<boost::mutex>;

// Kept: the linker is asked once. One that refuses its version or its engine refuses for good, and hosts see
// the same for as long as the renderer lives: nothing is rendered.
RendererImpl::RendererImpl() {
    SubstanceLinkerContext* made = nullptr;
    substanceLinkerContextInit(&made, SubstanceLinkerApiVersion, SubstanceLinkerEngineId);
    if (made) linkerContext.reset(made, substanceLinkerContextRelease);
}

RendererImpl::~RendererImpl() {
    states.clear();
    engineContext.reset();
    linkerContext.reset();
}

void RendererImpl::registerPackage(const PackageDesc& package) {
    packages.insert(package, package.asmUid());
}

void RendererImpl::unregisterPackage(unsigned int uid) {
    packages.erase(uid);
}

void RendererImpl::forgetPackage(const PackageDesc& package) {
    packages.forget(package);
}

bool RendererImpl::isPackageUidTaken(unsigned int uid) const {
    if (packages.contains(uid)) return true;
    const Lock lock(statesMutex);
    return std::any_of(states.begin(), states.end(),
                       [uid](const auto& state) { return state->hasPackage(uid); });
}

// What waits under another key, since a failure, was made of older values: its textures would come beside the
// new ones.
void RendererImpl::pushJob(std::unique_ptr<RenderJob>&& job) {
    const std::vector<JobOutput> outputs = job->outputs;
    const Lock lock(statesMutex);
    auto state =
        std::find_if(states.begin(), states.end(), [&job](const auto& each) { return each->matches(*job); });
    if (state == states.end()) state = states.insert(state, std::make_unique<RenderState>());
    (*state)->push(std::move(job));
    const auto isNewer = [&outputs](const OutputInstance* waiting) {
        return std::any_of(outputs.begin(), outputs.end(),
                           [waiting](const JobOutput& output) { return output.instance == waiting; });
    };
    for (auto other = states.begin(); other != states.end(); ++other)
        if (other != state) (*other)->forgetOutputs(isNewer);
}

void RendererImpl::runAll() {
    const std::vector<RenderState*> all = allStates();
    for (RenderState* const state : all) state->countRun();
    if (!ensureEngineContext()) return;
    for (RenderState* const state : all) state->run(linkerContext.get(), engineContext, packages);
}

void RendererImpl::updateStateKey(std::uint64_t graphIdentity, const std::vector<unsigned char>& /*oldBytes*/,
                                  const std::vector<unsigned char>& newBytes) {
    const Lock lock(statesMutex);
    for (const auto& state : states)
        if (state->updateKey(graphIdentity, newBytes)) return;
}

void RendererImpl::forgetGraph(const GraphInstance& graph) {
    const Lock lock(statesMutex);
    const auto isDying = [&graph](const OutputInstance* output) {
        return std::any_of(graph.outputs.begin(), graph.outputs.end(),
                           [output](const auto& own) { return own.get() == output; });
    };
    for (const auto& state : states) state->forgetOutputs(isDying);
}

void RendererImpl::onOutputCompleted(SubstanceHandle* handle, unsigned int outputIndex, void* jobUserData) {
    if (jobUserData) completeOutput(handle, outputIndex, *static_cast<RenderJob*>(jobUserData));
}

bool RendererImpl::ensureEngineContext() {
    if (engineContext) return true;
    SubstanceContext* made = nullptr;
    if (substanceContextInit(&made, &device) != 0) return false;
    const auto release = [outlived = linkerContext](SubstanceContext* context) {
        if (!support::isProcessEnding()) substanceContextRelease(context);
    };
    std::shared_ptr<SubstanceContext> owner(made, release);
    const auto callback = reinterpret_cast<SubstanceCallback>(&RendererImpl::onOutputCompleted);
    if (substanceContextSetCallback(made, SubstanceCallbackOutputCompleted, callback) != 0) return false;
    engineContext = std::move(owner);
    return true;
}

std::vector<RenderState*> RendererImpl::allStates() const {
    const Lock lock(statesMutex);
    std::vector<RenderState*> all;
    all.reserve(states.size());
    for (const auto& state : states) all.push_back(state.get());
    return all;
}

} // namespace SubstanceAir
