// Blur along a line.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind directionalBlurKind();

} // namespace embedded
