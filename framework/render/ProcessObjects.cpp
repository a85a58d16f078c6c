#include "framework/render/ProcessObjects.h"

#include "support/ProcessEnd.h"

namespace SubstanceAir {

namespace {

struct Closing : private boost::noncopyable {
    explicit Closing(ProcessObjects& processObjects)
        : objects(processObjects) {}

    ~Closing() {
        if (support::isProcessEnding()) return;
        const boost::unique_lock<boost::recursive_mutex> turn(objects.turnMutex, boost::try_to_lock);
        const boost::unique_lock<boost::mutex> lock(objects.rendererMutex);
        objects.isClosed = true;
        if (turn && !objects.worker.joinable()) objects.renderer.reset();
    }

    ProcessObjects& objects;
};

// At load time, or earlier if a static object of the host renders: those made before are destroyed after.
[[maybe_unused]] ProcessObjects* const madeAtLoadTime = processObjects();

} // namespace

ProcessObjects* processObjects() {
    if (support::isProcessEnding()) return nullptr;
    static ProcessObjects* const objects = new ProcessObjects;
    static const Closing atExit(*objects);
    return objects;
}

} // namespace SubstanceAir
