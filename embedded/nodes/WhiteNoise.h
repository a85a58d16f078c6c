// A random gray for each cell of a grid.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind whiteNoiseKind();

} // namespace embedded
