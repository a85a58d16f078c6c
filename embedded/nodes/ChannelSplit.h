// One channel of a colour image as a gray image.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind channelSplitKind();

} // namespace embedded
