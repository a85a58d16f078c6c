// A colour image from up to four gray images.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind channelMergeKind();

} // namespace embedded
