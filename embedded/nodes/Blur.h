// Gaussian blur.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind blurKind();

} // namespace embedded
