// Colours a gray image by a gradient of up to six stops.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind gradientMapKind();

} // namespace embedded
