// Contrast, inversion and clamping.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind adjustKind();

} // namespace embedded
