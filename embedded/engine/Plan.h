// What has to be computed for some wanted outputs: the needed nodes of a program with everything settled, and
// between them what brings sources into the shape that they are read in. Nodes that compute the same are one.
#pragma once

#include "embedded/engine/ImageKey.h"
#include "embedded/engine/InputValues.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/NodeKind.h"
#include "embedded/program/Program.h"

#include <vector>

namespace embedded {

struct PlanSource {
    static constexpr std::size_t nothing = static_cast<std::size_t>(-1);
    std::size_t node = nothing; // an earlier one of the plan
    int channels = 1;           // that the kernel reads
    int border = 0;

    bool connected() const { return node != nothing; }
};

struct PlanNode {
    const NodeKind* kind = nullptr;       // null for pictures and for changes of the size
    std::shared_ptr<const Image> picture; // an image from outside
    int width = 1;
    int height = 1;
    int channels = 1;
    std::vector<Value> parameters;
    std::vector<PlanSource> sources;
    ImageKey key;

    bool isPicture() const { return picture != nullptr; }
    bool isResampling() const { return !kind && !picture; }
    // Whether it can be computed segment by segment.
    bool hasRows() const { return kind && kind->kernel->prepareRows; }
    double costPerPixel() const { return kind ? kind->costPerPixel : isPicture() ? 0 : 20; }
};

// One level of an output's texture is a node's result.
struct Showing {
    std::size_t output; // index into Program::outputs
    std::size_t node;   // of the plan
    int level;          // 0: the full size
};

struct Plan {
    std::vector<PlanNode> nodes;   // sources come first
    std::vector<Showing> showings; // by their nodes
};

// The outputs are indices into Program::outputs, each once. The program has passed the verifier.
Plan makePlan(const Program& program, const std::vector<std::size_t>& outputs, const InputValues& inputs);

} // namespace embedded
