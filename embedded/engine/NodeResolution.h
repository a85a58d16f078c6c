// A node of a program with everything settled that the values of the inputs decide.
#pragma once

#include "embedded/engine/InputValues.h"
#include "embedded/nodes/Image.h"
#include "embedded/nodes/NodeKind.h"
#include "embedded/program/Program.h"

#include <vector>

namespace embedded {

constexpr int maximumLog2Side = 14;

struct ResolvedNode {
    const NodeKind* kind = nullptr;
    int width = 1;
    int height = 1;
    int channels = 1;                     // 1, 3 or 4
    std::vector<Value> parameters;        // within their ranges
    std::shared_ptr<const Image> picture; // what the image parameter refers to
    bool takesPicture = false;            // whether there is such a parameter

    // Channels of what the kernel reads from a port. The picture counts as a port marked Any behind the
    // others.
    int portChannels(std::size_t port) const;
};

// Channels of what is connected to each port, 0 where nothing is.
ResolvedNode resolveNode(const ProgramNode& node, const std::vector<int>& sourceChannels,
                         const InputValues& inputs);

} // namespace embedded
