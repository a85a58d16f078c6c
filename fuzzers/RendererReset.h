// Ends the process's renderer, so that no input of a fuzzer meets what an earlier one left. The next package
// makes a new one.
#pragma once

#include "framework/render/ProcessObjects.h"

namespace fuzzing {

// No graph instance may be alive, no stack of packages, and no render thread.
inline void resetRenderer() {
    if (SubstanceAir::ProcessObjects* const objects = SubstanceAir::processObjects())
        objects->renderer.reset();
}

} // namespace fuzzing
