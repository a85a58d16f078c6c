// The objects of rendering that exist once in a process, and the rules for locking them.
//
// Locks are taken in this order; whoever holds one takes only those below it:
//   0. the turn mutex      RenderTurn, for the whole of a render, from the start of the thread to its end
//   1. the run mutex       the render thread, for the whole of a run; IdleRendererAccess
//   2. the renderer mutex  RendererAccess, IdleRendererAccess; the render thread between runs
//   3. inside the renderer, each for a moment: its list of states, then one state's waiting jobs
//   4. inside the renderer: the package registry, by the render thread for as long as it pushes packages
//   5. the result mutex    for one push or pop
// A run thus excludes neither editing nor loading nor the pushing of jobs, but only the death of graph
// instances.
//
// At process exit the renderer is destroyed and closed for good: whatever the host destroys later finds none
// and makes none. The objects around it stay, because threads of the host may go on for a while. If one of
// them is in the middle of a render, that one is left to run to its end, and the renderer stays too. Where
// the process has lost its threads already (support/ProcessEnd.h), they and the engine's may have held any
// lock: then nothing is joined, locked or destroyed, and the system takes it all back.
#pragma once

#include "framework/render/Renderer.h"

#include <boost/core/noncopyable.hpp>
#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/thread/recursive_mutex.hpp>
#include <boost/thread/thread.hpp>

#include <memory>

namespace SubstanceAir {

struct ProcessObjects : private boost::noncopyable {
    boost::recursive_mutex turnMutex;
    boost::mutex resultMutex;   // guards the result queues of all outputs
    boost::mutex runMutex;      // held during a run
    boost::mutex rendererMutex; // guards the rest, and all of the renderer but its runs

    std::unique_ptr<RendererImpl> renderer; // made by the first RendererAccess
    bool isClosed = false;                  // neither a renderer nor a render thread is made any more
    bool pending = false;                   // a render was requested and has not finished
    bool running = false;                   // the render thread is to go on
    bool isLastRun = false;                 // it ends with the run that was requested
    boost::condition_variable wake;         // the render thread waits for pending, or for running to fall
    boost::condition_variable done;         // a caller waits for pending to fall
    boost::thread worker;
};

// Null when the process has lost its threads. They are never destroyed.
ProcessObjects* processObjects();

} // namespace SubstanceAir
