// One colour or one gray value everywhere.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind uniformKind();

} // namespace embedded
