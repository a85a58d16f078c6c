// The render thread, on which all engine work runs, and how callers wait for it.
//
// A render is synchronous for its caller: push the jobs through a RendererAccess, close it, requestRender, then
// waitRenderDone. One caller renders at a time.
#pragma once

namespace SubstanceAir {

// Throws boost::thread_resource_error when there is no thread to be had. A thread that still runs from an
// earlier start is stopped and joined first.
void startRenderThread();

// Wakes the render thread for one run over all states.
void requestRender();

// Blocks until the requested run has ended, however it ended.
void waitRenderDone();

// Ends the thread after the run in progress, if any, and joins it.
void stopRenderThread();

} // namespace SubstanceAir
