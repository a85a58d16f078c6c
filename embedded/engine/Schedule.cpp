#include "embedded/engine/Schedule.h"

#include <algorithm>

namespace embedded {
namespace {

std::vector<bool> neededNodes(const Program& program, const std::vector<std::size_t>& outputs) {
    std::vector<bool> needed(program.nodes.size());
    for (const std::size_t output : outputs)
        needed[static_cast<std::size_t>(program.outputs[output].node)] = true;
    for (std::size_t i = program.nodes.size(); i-- > 0;) {
        if (!needed[i]) continue;
        for (const std::int32_t source : program.nodes[i].sources)
            if (source != ProgramNode::unconnected) needed[static_cast<std::size_t>(source)] = true;
    }
    return needed;
}

std::uint64_t bytesOf(const ResolvedNode& node, int channels) {
    return sizeof(float) * static_cast<std::uint64_t>(node.width) * static_cast<std::uint64_t>(node.height) *
           static_cast<std::uint64_t>(channels);
}

// While a node runs there are its result, a working copy for kernels that need one, and its sources in its
// own shape; a shown node is brought to a colour image with half as much again for the smaller levels and the
// texture.
std::uint64_t workingBytes(const ScheduledNode& step) {
    std::uint64_t bytes = 2 * bytesOf(step.resolved, step.resolved.channels);
    for (std::size_t i = 0; i < step.resolved.kind->ports.size(); ++i)
        bytes += bytesOf(step.resolved, step.resolved.portChannels(i));
    const std::uint64_t showing = 2 * bytesOf(step.resolved, 4);
    return std::max(bytes, step.outputs.empty() ? bytes : showing);
}

// A node's image is released by the last step that reads it, or at once when none does.
void addReleases(const Program& program, Schedule& schedule) {
    std::vector<bool> read(program.nodes.size());
    for (auto step = schedule.steps.rbegin(); step != schedule.steps.rend(); ++step) {
        const auto releaseFirstSeen = [&](std::size_t node) {
            if (!read[node]) step->released.push_back(node);
            read[node] = true;
        };
        releaseFirstSeen(step->node);
        for (const std::int32_t source : program.nodes[step->node].sources)
            if (source != ProgramNode::unconnected) releaseFirstSeen(static_cast<std::size_t>(source));
    }
}

std::uint64_t peakOf(const Program& program, const Schedule& schedule) {
    std::vector<std::uint64_t> sizes(program.nodes.size());
    std::uint64_t held = 0;
    std::uint64_t peak = 0;
    for (const ScheduledNode& step : schedule.steps) {
        peak = std::max(peak, held + workingBytes(step));
        sizes[step.node] = bytesOf(step.resolved, step.resolved.channels);
        held += sizes[step.node];
        for (const std::size_t released : step.released) held -= sizes[released];
        held += step.outputs.size() * bytesOf(step.resolved, 4) / 2; // textures wait to be fetched
        peak = std::max(peak, held);
    }
    return peak;
}

} // namespace

Schedule makeSchedule(const Program& program, const std::vector<std::size_t>& outputs,
                      const InputValues& inputs) {
    const std::vector<bool> needed = neededNodes(program, outputs);
    Schedule schedule;
    schedule.steps.reserve(static_cast<std::size_t>(std::count(needed.begin(), needed.end(), true)));
    std::vector<const ResolvedNode*> resolved(program.nodes.size());
    for (std::size_t i = 0; i < program.nodes.size(); ++i) {
        if (!needed[i]) continue;
        std::vector<const ResolvedNode*> sources;
        for (const std::int32_t source : program.nodes[i].sources)
            sources.push_back(
                source == ProgramNode::unconnected ? nullptr : resolved[static_cast<std::size_t>(source)]);
        ScheduledNode step{i, resolveNode(program.nodes[i], sources, inputs), {}, {}};
        for (const std::size_t output : outputs)
            if (static_cast<std::size_t>(program.outputs[output].node) == i) step.outputs.push_back(output);
        schedule.steps.push_back(std::move(step));
        resolved[i] = &schedule.steps.back().resolved; // stays: the steps were reserved
    }
    addReleases(program, schedule);
    schedule.peakBytes = peakOf(program, schedule);
    return schedule;
}

} // namespace embedded
