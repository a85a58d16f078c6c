// One request to compute outputs of a graph instance.
#pragma once

#include "framework/render/InputValueSnapshot.h"
#include "platform/engine.h"

#include <boost/core/noncopyable.hpp>

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace SubstanceAir {

class GraphInstance;
class OutputInstance;

// What has become of one output of a job in the run in progress.
enum class OutputOutcome : unsigned char { Awaited, Fetching, Delivered };

struct JobOutput {
    OutputInstance* instance; // not owned; one that dies is taken out of waiting jobs
    unsigned int runs = 0;    // that were to render it, the one in progress included; more after failures
};

// Made on the host's thread and handed to the renderer.
struct RenderJob : private boost::noncopyable {
    std::vector<unsigned char> keyBytes;
    unsigned int packageUid = 0;
    std::uint64_t graphIdentity = 0;
    bool forced = true; // pushed even when none of its inputs changed
    bool pushed = false;
    std::vector<JobOutput> outputs;
    std::vector<InputValueSnapshot> inputs;

    // The renderer's, for the time of a run. Any of the engine's threads may write an outcome.
    std::shared_ptr<SubstanceContext> engineContext;  // which finished textures keep alive
    std::vector<std::atomic<OutputOutcome>> outcomes; // one for each output
};

// Takes every output of the graph that is enabled and dirty, and marks it clean. Null when there is none, or
// when the graph belongs to no package (its outputs then stay dirty).
std::unique_ptr<RenderJob> makeRenderJob(GraphInstance& graph);

// For a job that is not rendered, or not with all its inputs: its outputs become dirty again.
void returnOutputs(const RenderJob& job);

// Puts the job's inputs and outputs in the order of their uids.
void sortByUid(RenderJob& job);

// Adds the inputs and outputs of a newer job of the same package to a waiting one, both sorted. Where both
// have a uid the newer job's entry wins; an output of another graph instance that loses becomes dirty again.
void mergeInto(RenderJob& waiting, const RenderJob& newer);

} // namespace SubstanceAir
