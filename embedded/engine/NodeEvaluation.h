// The evaluation of one node: its shape and parameters settled, its sources brought into the shape its kernel
// reads, its kernel run.
#pragma once

#include "embedded/engine/Bands.h"
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
    int channels = 1;
    std::vector<Value> parameters;      // within their ranges
    std::shared_ptr<const Image> image; // what the image parameter refers to

    // Channels of what the kernel reads from a port.
    int portChannels(std::size_t port) const;
};

// The sources, null where nothing is connected, have to be resolved already.
ResolvedNode resolveNode(const ProgramNode& node, const std::vector<const ResolvedNode*>& sources,
                         const InputValues& inputs);

// Sources in the order of the ports, null where nothing is connected, in any shape.
Image evaluateNode(const ResolvedNode& node, const std::vector<const Image*>& sources,
                   const BandRunner& runner);

} // namespace embedded
