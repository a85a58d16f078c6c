// One engine handle and everything that was pushed into it.
#pragma once

#include "framework/render/RenderJob.h"
#include "framework/render/StateKey.h"
#include "platform/engine.h"
#include "platform/linker.h"

#include <boost/core/noncopyable.hpp>
#include <boost/thread/mutex.hpp>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace SubstanceAir {

class PackageRegistry;

// Lives as long as the renderer, and is linked once: a package that changes needs a new state. Everything but
// countRun and run is called with the renderer mutex held; these, on the render thread, without it. Jobs may
// be pushed during a run, and wait for the next.
class RenderState : private boost::noncopyable {
public:
    RenderState() = default;

    // A state without keys takes any job; else the job's package and key bytes must be those of the first
    // key.
    bool matches(const RenderJob& job) const;

    // Takes the job, or destroys it and returns false when it does not match. A job that joins a waiting one
    // of its package is merged into it. When it throws the job is still the caller's.
    bool push(std::unique_ptr<RenderJob>&& job);

    // Links and initialises on first use, pushes what changed, and starts the engine. A failure of the linker
    // or the engine leaves the jobs waiting for the next run. Does nothing unless there are both contexts.
    void run(SubstanceLinkerContext* linkerContext, const std::shared_ptr<SubstanceContext>& engineContext,
             const PackageRegistry& packages);

    // True when the state serves this one graph only; its first key then gets the new bytes.
    bool updateKey(std::uint64_t graphIdentity, const std::vector<unsigned char>& newBytes);

    // At the beginning of a run of the renderer, on the render thread: what waits now is to be rendered.
    void countRun();

    // Whether a key of the state names the package.
    bool hasPackage(unsigned int packageUid) const;

    // Takes such outputs out of every waiting job, and drops jobs that are left without any. Jobs of a run in
    // progress keep theirs: who ends the life of an output waits for the run first.
    void forgetOutputs(const std::function<bool(const OutputInstance*)>& isForgotten);

private:
    struct HandleRelease {
        void operator()(SubstanceHandle* owned) const { substanceHandleRelease(owned); }
    };
    using HandleOwner = std::unique_ptr<SubstanceHandle, HandleRelease>;
    using EngineInputs = std::map<unsigned int, SubstanceInputDesc>; // by input uid

    bool accepts(const RenderJob& job) const;
    void enqueue(std::unique_ptr<RenderJob>& job); // takes the job, unless it throws

    bool makeHandle(SubstanceLinkerContext* linkerContext, SubstanceContext* engineContext,
                    const PackageRegistry& packages);
    unsigned int link(SubstanceLinkerContext* linkerContext, const PackageRegistry& packages);
    unsigned int initialiseHandle(SubstanceContext* engineContext);
    static unsigned int readInputs(SubstanceHandle* fresh, EngineInputs& inputs);
    bool isWaiting() const;
    std::vector<unsigned int> waitingPackages() const;

    void takePending();
    bool renderCurrent(const std::shared_ptr<SubstanceContext>& engineContext);
    bool pushJobs();
    void pushHints();
    bool pushChangedInputs(const RenderJob& job);
    bool pushInput(const InputValueSnapshot& input, unsigned int flags);
    bool pushOutputs(RenderJob& job, unsigned int flags);
    void putBack();

    // The keys, the graphs and the pending jobs are shared between the host's threads and the render thread,
    // under the mutex. The rest is the render thread's.
    HandleOwner handle;
    std::vector<unsigned char> assembly; // empty until linked
    std::vector<StateKey> keys;
    std::set<std::uint64_t> graphs;                        // whose jobs were pushed into this state
    std::map<unsigned int, InputValueSnapshot> lastPushed; // what the handle holds, by input uid
    std::vector<std::unique_ptr<RenderJob>> pending;       // for the next run
    std::vector<std::unique_ptr<RenderJob>> current;       // of the run in progress
    EngineInputs engineInputs;
    std::vector<unsigned int> pushedNow; // the inputs pushed by the run in progress
    bool isStartDue = false;             // outputs were pushed, and the engine holds their jobs
    mutable boost::mutex mutex;
};

} // namespace SubstanceAir
