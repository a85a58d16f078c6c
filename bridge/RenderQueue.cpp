#include "bridge/RenderQueue.h"

#include "framework/render/GraphInstance.h"
#include "framework/render/Renderer.h"
#include "framework/render/RendererAccess.h"

#include <utility>

namespace kvSubstance {

RenderQueue::RenderQueue() {
    SubstanceAir::startRenderThread();
}

RenderQueue::~RenderQueue() {
    SubstanceAir::stopRenderThread();
    for (const auto& job : jobs) {
        if (job) SubstanceAir::returnOutputs(*job);
    }
}

// Room comes first: a job that is made has taken its outputs, and must not be lost for want of memory.
void RenderQueue::push(SubstanceAir::GraphInstance& graph) {
    jobs.emplace_back();
    jobs.back() = SubstanceAir::makeRenderJob(graph);
    if (!jobs.back()) jobs.pop_back();
}

bool RenderQueue::handOver() {
    const SubstanceAir::RendererAccess renderer;
    if (!renderer) return false;
    while (!jobs.empty()) {
        renderer->pushJob(std::move(jobs.front())); // which leaves the job here when memory runs out
        jobs.pop_front();
    }
    return true;
}

void RenderQueue::run() {
    if (!handOver()) return;
    SubstanceAir::requestLastRender();
    SubstanceAir::waitRenderDone();
}

} // namespace kvSubstance
