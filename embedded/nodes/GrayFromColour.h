// Colours as gray, by one of several measures.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind grayFromColourKind();

} // namespace embedded
