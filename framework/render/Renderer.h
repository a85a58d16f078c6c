// The one object of the process that talks to the engine: it groups render jobs into states, each with an
// engine handle, and hands finished textures to the outputs that asked for them.
#pragma once

#include "framework/render/PackageRegistry.h"
#include "framework/render/RenderJob.h"
#include "framework/render/RenderState.h"
#include "platform/engine.h"
#include "platform/linker.h"

#include <boost/core/noncopyable.hpp>
#include <boost/thread/mutex.hpp>

#include <cstdint>
#include <memory>
#include <vector>

namespace SubstanceAir {

class GraphInstance;

// Reached through RendererAccess, which holds the renderer mutex; runAll alone is called without it, on the
// render thread. Failures are silent: what could not be done is tried again by the next run, the engine's
// context included. The linker's is made first, in the constructor; without it nothing is ever rendered.
class RendererImpl : private boost::noncopyable {
public:
    RendererImpl();

    // Releases the engine handles, then the engine context, then the linker context. Finished textures that
    // nobody has freed yet keep the engine context until the last of them is.
    virtual ~RendererImpl();

    // Packages and stacks call these when they are complete and when they die.
    void registerPackage(const PackageDesc& package); // replaces one of the same uid
    void unregisterPackage(unsigned int uid);         // whichever package holds it
    void forgetPackage(const PackageDesc& package);   // its key stays, and leads to nothing
    bool isPackageUidTaken(unsigned int uid) const;   // by a package, or by the key of a state

    // Hands the job to the first state whose key it matches, or to a new one. When it throws the job is still
    // the caller's.
    void pushJob(std::unique_ptr<RenderJob>&& job);

    void runAll();

    // A state-key input of the graph changed. The state that serves this graph alone keeps its handle under
    // the new key; a graph that shares its state finds another with its next job.
    void updateStateKey(std::uint64_t graphIdentity, const std::vector<unsigned char>& oldBytes,
                        const std::vector<unsigned char>& newBytes);

    // The graph instance dies: no waiting job keeps its outputs. Not during a run (see IdleRendererAccess).
    void forgetGraph(const GraphInstance& graph);

    // The engine's callback, on any thread, while a run is in progress.
    static void onOutputCompleted(SubstanceHandle* handle, unsigned int outputIndex, void* jobUserData);

private:
    bool ensureEngineContext();
    std::vector<RenderState*> allStates() const;

    std::vector<std::unique_ptr<RenderState>> states; // in the order of their creation; never shrinks
    PackageRegistry packages;
    std::shared_ptr<SubstanceLinkerContext> linkerContext;
    std::shared_ptr<SubstanceContext> engineContext; // on first use; keeps the linker's, if there is one
    SubstanceDevice device{};
    mutable boost::mutex statesMutex; // guards the list, which a run reads without the renderer mutex
};

} // namespace SubstanceAir
