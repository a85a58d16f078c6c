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

void reportDone(ProcessObjects& objects) {
    const Lock lock(objects.rendererMutex);
    objects.pending = false;
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

} // namespace

void startRenderThread() {
    ProcessObjects* const objects = processObjects();
    if (!objects) return;
    stopRenderThread();
    support::stayLoaded(); // the engine's threads, which a render starts, live on after it
    const Lock lock(objects->rendererMutex);
    objects->running = true;
    objects->worker = boost::thread(&renderThread);
}

void requestRender() {
    ProcessObjects* const objects = processObjects();
    if (!objects) return;
    const Lock lock(objects->rendererMutex);
    objects->pending = true;
    objects->wake.notify_one();
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
    boost::thread ending;
    {
        const Lock lock(objects->rendererMutex);
        if (!objects->worker.joinable()) return;
        objects->running = false;
        objects->wake.notify_one();
        ending.swap(objects->worker);
    }
    const Uninterrupted uninterrupted;
    ending.join(); // outside the mutex, which the thread needs to end
}

} // namespace SubstanceAir
