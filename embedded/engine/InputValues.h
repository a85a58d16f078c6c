// The values of a program's inputs, and what they make of a node's parameters.
#pragma once

#include "embedded/nodes/Image.h"
#include "embedded/nodes/NodeKind.h"
#include "embedded/program/Program.h"

#include <memory>
#include <vector>

namespace embedded {

// One for each input of the program, in its order. A copy is a snapshot: images are shared and never change.
struct InputValues {
    std::vector<Value> values;
    std::vector<std::shared_ptr<const Image>> images; // null for inputs that are no images or have none
};

InputValues defaultValues(const Program& program);

// The value that a binding gives a parameter of the type, not yet brought into any range. Not for images.
Value resolveBinding(const Binding& binding, ValueType type, const InputValues& inputs);

} // namespace embedded
