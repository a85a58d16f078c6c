// Simple shapes by their signed distance, one in each cell of a grid.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind shapeKind();

} // namespace embedded
