// A wall of bricks: mask, bevelled height, or a random number for each brick.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind bricksKind();

} // namespace embedded
