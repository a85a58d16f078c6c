// Displaces an image along one direction.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind directionalWarpKind();

} // namespace embedded
