// Gradient noise summed over octaves: K. Perlin, "Improving Noise", 2002, over hashed lattice gradients.
#pragma once

#include "embedded/nodes/NodeKind.h"

namespace embedded {

NodeKind fractalNoiseKind();

} // namespace embedded
