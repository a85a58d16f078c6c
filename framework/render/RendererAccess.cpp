#include "framework/render/RendererAccess.h"

#include "framework/render/ProcessObjects.h"

namespace SubstanceAir {

RendererAccess::RendererAccess() {
    ProcessObjects* const objects = processObjects();
    if (!objects) return;
    lock = boost::unique_lock<boost::mutex>(objects->rendererMutex);
    if (!objects->renderer && !objects->isClosed) objects->renderer = std::make_unique<RendererImpl>();
    renderer = objects->renderer.get();
}

IdleRendererAccess::IdleRendererAccess() {
    ProcessObjects* const objects = processObjects();
    if (!objects) return;
    runLock = boost::unique_lock<boost::mutex>(objects->runMutex);
    lock = boost::unique_lock<boost::mutex>(objects->rendererMutex);
    renderer = objects->renderer.get();
}

} // namespace SubstanceAir
