// Tangent-space normals of a height image.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind normalKind();

} // namespace embedded
