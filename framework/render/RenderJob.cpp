#include "framework/render/RenderJob.h"

#include "framework/description/PackageDesc.h"
#include "framework/render/GraphInstance.h"

#include <algorithm>
#include <iterator>

namespace SubstanceAir {

namespace {

bool hasLowerUid(const InputValueSnapshot& a, const InputValueSnapshot& b) {
    return a.uid < b.uid;
}
bool hasLowerUid(const JobOutput& a, const JobOutput& b) {
    return a.instance->desc.uid < b.instance->desc.uid;
}

constexpr auto byUid = [](const auto& a, const auto& b) { return hasLowerUid(a, b); };

// The union by uid; of two entries with one uid the preferred one stays.
template <class T>
std::vector<T> unite(const std::vector<T>& preferred, const std::vector<T>& others) {
    std::vector<T> united;
    united.reserve(preferred.size() + others.size());
    std::set_union(preferred.begin(), preferred.end(), others.begin(), others.end(),
                   std::back_inserter(united), byUid);
    return united;
}

void takeDirtyOutputs(const GraphInstance& graph, RenderJob& job) {
    job.outputs.reserve(graph.outputs.size());
    for (const auto& output : graph.outputs)
        if (output->enabled && output->dirty.exchange(false)) job.outputs.push_back({output.get()});
}

void describe(const GraphInstance& graph, RenderJob& job) {
    job.inputs.reserve(graph.inputs.size());
    for (const auto& input : graph.inputs) job.inputs.emplace_back(*input);
    job.keyBytes = graph.keyBytes();
    job.packageUid = graph.desc.parent->asmUid();
    job.graphIdentity = graph.identity;
}

} // namespace

std::unique_ptr<RenderJob> makeRenderJob(GraphInstance& graph) {
    if (!graph.desc.parent) return nullptr;
    auto job = std::make_unique<RenderJob>();
    takeDirtyOutputs(graph, *job);
    if (job->outputs.empty()) return nullptr;
    try {
        describe(graph, *job);
    } catch (...) {
        returnOutputs(*job);
        throw;
    }
    return job;
}

void returnOutputs(const RenderJob& job) {
    for (const JobOutput& output : job.outputs) output.instance->dirty = true;
}

void sortByUid(RenderJob& job) {
    std::stable_sort(job.inputs.begin(), job.inputs.end(), byUid);
    std::stable_sort(job.outputs.begin(), job.outputs.end(), byUid);
}

void mergeInto(RenderJob& waiting, const RenderJob& newer) {
    std::vector<InputValueSnapshot> inputs = unite(newer.inputs, waiting.inputs);
    std::vector<JobOutput> outputs = unite(newer.outputs, waiting.outputs);
    for (const JobOutput& output : waiting.outputs) {
        const auto isIt = [&output](const JobOutput& other) { return other.instance == output.instance; };
        if (std::none_of(outputs.begin(), outputs.end(), isIt)) output.instance->dirty = true;
    }
    waiting.inputs.swap(inputs);
    waiting.outputs.swap(outputs);
    waiting.forced = waiting.forced || newer.forced;
}

} // namespace SubstanceAir
