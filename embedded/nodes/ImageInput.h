// An image from outside: what the host sets, what a linked program feeds, or a fallback colour.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind imageInputKind();

} // namespace embedded
