// Maps values by a smooth monotone curve through up to six points.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind curveKind();

} // namespace embedded
