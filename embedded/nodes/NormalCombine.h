// Puts the details of one normal map on another.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind normalCombineKind();

} // namespace embedded
