// Straight waves, rings around the centre, or sectors and spirals, of several profiles.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind waveKind();

} // namespace embedded
