// Maps a range of values to another with a gamma between.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind levelsKind();

} // namespace embedded
