// Blends a foreground over a background: W3C, "Compositing and Blending Level 1", 2015.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind blendKind();

} // namespace embedded
