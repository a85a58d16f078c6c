// The plain way to a node's image, which tests compare the evaluator with: straight recursion over the
// program, one node at a time over whole images, no schedule, nothing shared or kept. Its time grows with the
// number of paths through the program.
#pragma once

#include "embedded/engine/InputValues.h"
#include "embedded/nodes/Image.h"
#include "embedded/program/Program.h"

namespace embedded {

Image evaluatePlainly(const Program& program, std::size_t node, const InputValues& inputs);

} // namespace embedded
