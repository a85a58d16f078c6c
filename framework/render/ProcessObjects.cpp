#include "framework/render/ProcessObjects.h"

#include "support/ProcessEnd.h"

#include <atomic>

namespace SubstanceAir {

namespace {

// Needs neither construction nor destruction, and so may be asked at any time.
std::atomic<bool> isClosed{false};

struct Owner : private boost::noncopyable {
    ~Owner() {
        isClosed = true;
        if (!objects->worker.joinable() && !support::isProcessEnding()) delete objects;
    }
    ProcessObjects* const objects = new ProcessObjects;
};

// At load time, or earlier if a static object of the host renders: those made before are destroyed after.
[[maybe_unused]] ProcessObjects* const madeAtLoadTime = processObjects();

} // namespace

ProcessObjects* processObjects() {
    if (isClosed || support::isProcessEnding()) return nullptr;
    static const Owner owner;
    return owner.objects;
}

} // namespace SubstanceAir
