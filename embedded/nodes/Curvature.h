// Edges and cavities of a height image.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind curvatureKind();

} // namespace embedded
