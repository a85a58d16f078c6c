// A pattern placed many times, with random place, size, turn and brightness.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind scatterKind();

} // namespace embedded
