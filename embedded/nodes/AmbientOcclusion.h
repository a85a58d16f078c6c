// The light of an even sky that reaches the ground of a height image.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind ambientOcclusionKind();

} // namespace embedded
