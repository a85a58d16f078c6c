// Smears an image along the slopes or the contours of a height image.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind flowSmearKind();

} // namespace embedded
