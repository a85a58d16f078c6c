// The render thread, on which all engine work runs, and how callers wait for it.
//
// A render is synchronous for its caller: push the jobs through a RendererAccess, close it, requestRender,
// then waitRenderDone. One caller renders at a time, from start to stop, with a RenderTurn. When the process
// is exiting, no thread is started, and without one these do nothing.
#pragma once

#include <boost/core/noncopyable.hpp>
#include <boost/thread/lock_types.hpp>
#include <boost/thread/recursive_mutex.hpp>

namespace SubstanceAir {

// Waits until no other thread of the host renders, and makes them wait as long as it lives. A thread that has
// a turn may take another one.
class RenderTurn : private boost::noncopyable {
public:
    RenderTurn();

private:
    boost::unique_lock<boost::recursive_mutex> lock;
};

// Throws boost::thread_resource_error when there is no thread to be had. A thread that still runs from an
// earlier start is stopped and joined first. A request made before is served at once.
void startRenderThread();

// Wakes the render thread for one run over all states. A request made during a run ends with that run.
void requestRender();

// The same, and the thread ends by itself with that run: whoever asks for no more than one spares the thread
// another sleep before its end, and stopRenderThread the wait for it to wake. It is to be stopped all the
// same.
void requestLastRender();

// Blocks until the requested run has ended, however it ended.
void waitRenderDone();

// Ends the thread after the run in progress, if any, and joins it. Does nothing without a thread.
void stopRenderThread();

} // namespace SubstanceAir
