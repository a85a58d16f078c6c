#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

// Each component within the parameter's range; NaN becomes its minimum.
Value withinRange(Value value, const ParameterInfo& parameter);

} // namespace embedded
