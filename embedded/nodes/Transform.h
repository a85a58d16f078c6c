// Repeats, turns and shifts an image.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind transformKind();

} // namespace embedded
