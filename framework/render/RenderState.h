// One engine handle and everything that was pushed into it.
#pragma once

#include "framework/render/RenderJob.h"
#include "framework/render/StateKey.h"
#include "platform/engine.h"
#include "platform/linker.h"

#include <boost/core/noncopyable.hpp>

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace SubstanceAir {

class OutputInstance;
class PackageRegistry;

// Lives as long as the renderer. Everything but run is called with the renderer mutex held; run, on the render
// thread, without it, while no job is pushed.
class RenderState : private boost::noncopyable {
public:
    RenderState() = default;
    ~RenderState(); // releases the handle

    // A state without keys takes any job; else the job's package and key bytes must be those of the first key.
    bool matches(const RenderJob& job) const;

    // Takes the job, or destroys it and returns false when it does not match.
    bool push(std::unique_ptr<RenderJob> job);

    // Links and initialises on first use, pushes what changed, and starts the engine. A failure of the linker or
    // the engine leaves the jobs waiting for the next run.
    void run(SubstanceLinkerContext* linkerContext, SubstanceContext* engineContext,
             const PackageRegistry& packages);

    // True when the state serves this one graph only; its first key then gets the new bytes.
    bool updateKey(std::uint64_t graphIdentity, const std::vector<unsigned char>& newBytes);

    // Takes the outputs out of every waiting job, and drops jobs that are left without any.
    void forgetOutputs(const std::vector<const OutputInstance*>& dying);

private:
    unsigned int link(SubstanceLinkerContext* linkerContext, const PackageRegistry& packages);
    unsigned int initialiseHandle(SubstanceContext* engineContext);
    void releaseHandle();

    SubstanceHandle* handle = nullptr;
    std::vector<unsigned char> assembly; // empty until linked
    std::vector<StateKey> keys;
    std::set<std::uint64_t> graphs; // whose jobs were pushed into this state
    std::map<unsigned int, InputValueSnapshot> lastPushed;
    std::vector<std::unique_ptr<RenderJob>> pending; // for the next run
    std::vector<std::unique_ptr<RenderJob>> current; // of the run in progress
    std::map<unsigned int, SubstanceInputDesc> engineInputs;
};

} // namespace SubstanceAir
