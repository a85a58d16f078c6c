#include "framework/render/RenderThread.h"

#include "framework/render/ProcessObjects.h"
#include "support/ProcessEnd.h"

namespace SubstanceAir {

namespace {

using Lock = boost::unique_lock<boost::mutex>;

// Callers may be Boost threads that somebody interrupts: a render is not left half way, and a queue's
// destructor throws nothing.
using Uninterrupted = boost::this_thread::disable_interruption;

// False when the thread is to end.
bool waitForRequest(ProcessObjects& objects) {
    Lock lock(objects.rendererMutex);
    while (!objects.pending && objects.running) objects.wake.wait(lock);
    return objects.running;
}

// Whoever loads packages has created the renderer; the render thread never does.
RendererImpl* existingRenderer(ProcessObjects& objects) {
    const Lock lock(objects.rendererMutex);
    return objects.renderer.get();
}

void runOnce(ProcessObjects& objects) {
    const Lock run(objects.runMutex);
    RendererImpl* const renderer = existingRenderer(objects);
    if (!renderer) return;
    try {
        renderer->runAll();
    } catch (...) {
        // Out of memory, as likely as not. The waiting caller has to wake all the same.
    }
}

// Whoever waits is woken when the mutex is free again, which it needs to go on.
void reportDone(ProcessObjects& objects) {
    {
        const Lock lock(objects.rendererMutex);
        objects.pending = false;
        if (objects.isLastRun) objects.running = false;
    }
    objects.done.notify_one();
}

void renderThread() {
    ProcessObjects* const objects = processObjects();
    if (!objects) return;
    while (waitForRequest(*objects)) {
        runOnce(*objects);
        reportDone(*objects);
    }
}

void request(bool isLast) {
    ProcessObjects* const objects = processObjects();
    if (!objects) return;
    const Lock lock(objects->rendererMutex);
    if (objects->isClosed && !objects->worker.joinable()) return; // nobody would serve it
    objects->pending = true;
    objects->isLastRun = isLast;
    objects->wake.notify_one();
}

// The thread, which is told to end, or none.
boost::thread takeWorker(ProcessObjects& objects) {
    boost::thread taken;
    const Lock lock(objects.rendererMutex);
    if (!objects.worker.joinable()) return taken;
    objects.running = false;
    objects.wake.notify_one();
    taken.swap(objects.worker);
    return taken;
}

} // namespace

RenderTurn::RenderTurn() {
    if (ProcessObjects* const objects = processObjects())
        lock = boost::unique_lock<boost::recursive_mutex>(objects->turnMutex);
}

void startRenderThread() {
    ProcessObjects* const objects = processObjects();
    if (!objects) return;
    stopRenderThread();
    support::prepareForThreads(); // the engine's too, which a render starts, and which live on after it
    const Lock lock(objects->rendererMutex);
    if (objects->isClosed) return;
    objects->running = true;
    objects->isLastRun = false;
    objects->worker = boost::thread(&renderThread);
}

void requestRender() {
    request(false);
}

void requestLastRender() {
    request(true);
}

void waitRenderDone() {
    ProcessObjects* const objects = processObjects();
    if (!objects) return;
    const Uninterrupted uninterrupted;
    Lock lock(objects->rendererMutex);
    while (objects->pending) objects->done.wait(lock);
}

void stopRenderThread() {
    ProcessObjects* const objects = processObjects();
    if (!objects) return;
    boost::thread ending = takeWorker(*objects);
    if (!ending.joinable()) return;
    const Uninterrupted uninterrupted;
    ending.join(); // outside the mutex, which the thread needs to end
}

} // namespace SubstanceAir
