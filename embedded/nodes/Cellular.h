// Cellular texture: S. Worley, "A Cellular Texture Basis Function", 1996.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind cellularKind();

} // namespace embedded
