// One request to compute outputs of a graph instance.
#pragma once

#include "framework/render/InputValueSnapshot.h"

#include <boost/core/noncopyable.hpp>

#include <cstdint>
#include <memory>
#include <vector>

namespace SubstanceAir {

class GraphInstance;
class OutputInstance;

// Made on the host's thread and handed to the renderer. Outputs are not owned; an instance that dies takes its
// outputs out of waiting jobs.
struct RenderJob : private boost::noncopyable {
    std::vector<unsigned char> keyBytes;
    unsigned int packageUid = 0;
    std::uint64_t graphIdentity = 0;
    bool forced = true; // pushed even when none of its inputs changed
    bool pushed = false;
    std::vector<OutputInstance*> outputs;
    std::vector<InputValueSnapshot> inputs;
};

// Takes every output of the graph that is enabled and dirty, and marks it clean. Null when there is none, or
// when the graph belongs to no package (its outputs then stay dirty).
std::unique_ptr<RenderJob> makeRenderJob(GraphInstance& graph);

// For a job that will not be rendered: its outputs become dirty again.
void returnOutputs(const RenderJob& job);

} // namespace SubstanceAir
