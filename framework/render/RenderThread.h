// The render thread, on which all engine work runs, and how callers wait for it.
//
// A render is synchronous for its caller: push the jobs through a RendererAccess, close it, requestRender,
// then waitRenderDone. One caller renders at a time, from start to stop. When the process is exiting, all of
// these do nothing.
#pragma once

namespace SubstanceAir {

// Throws boost::thread_resource_error when there is no thread to be had. A thread that still runs from an
// earlier start is stopped and joined first. A request made before is served at once.
void startRenderThread();

// Wakes the render thread for one run over all states. A request made during a run ends with that run.
void requestRender();

// Blocks until the requested run has ended, however it ended.
void waitRenderDone();

// Ends the thread after the run in progress, if any, and joins it. Does nothing without a thread.
void stopRenderThread();

} // namespace SubstanceAir
