// Euclidean distance to what is brighter or darker than a threshold.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind distanceKind();

} // namespace embedded
