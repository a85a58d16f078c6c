// Changes colours in terms of hue, saturation and lightness.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind hueSaturationLightnessKind();

} // namespace embedded
