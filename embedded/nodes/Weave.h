// Woven threads: mask, height, a random number for each thread, or which threads lie on top.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind weaveKind();

} // namespace embedded
