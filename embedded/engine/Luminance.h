// What gray ports read of colours. Programs cannot name this kind: the plan puts it where it is needed.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

const NodeKind& luminanceKind();

} // namespace embedded
