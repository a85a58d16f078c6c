// What happens when the engine has computed an output: its texture is fetched and handed to the output
// instance that asked for it.
#pragma once

#include "platform/engine.h"

#include <memory>

namespace SubstanceAir {

struct RenderJob;

// Before the job's outputs are pushed. The context is what finished textures keep alive.
void awaitOutputs(RenderJob& job, const std::shared_ptr<SubstanceContext>& engineContext);

// For an output of a pushed job, sorted by uid; from any thread of the engine, also from several at once, and
// more than once. An output that the job did not ask for is passed over. Throws nothing.
void completeOutput(SubstanceHandle* handle, unsigned int outputIndex, RenderJob& job) noexcept;

// When the engine has failed: outputs whose texture has come all the same leave the job, which will run
// again. They would have it twice, and hosts, who take the oldest, would see old pictures from then on.
void dropDelivered(RenderJob& job);

// When the engine is done: outputs whose texture did not come, or could not be had, become dirty again.
void settleOutputs(const RenderJob& job);

} // namespace SubstanceAir
