// Displaces an image along the slope of a height image, by a vector image, or both.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind warpKind();

} // namespace embedded
