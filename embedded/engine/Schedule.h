// The order of work for some wanted outputs: only the nodes they depend on, with everything settled, and for
// each node the images that nobody reads after it.
#pragma once

#include "embedded/engine/NodeEvaluation.h"

#include <cstdint>
#include <vector>

namespace embedded {

struct ScheduledNode {
    std::size_t node; // index into Program::nodes
    ResolvedNode resolved;
    std::vector<std::size_t> outputs;  // wanted outputs that show this node
    std::vector<std::size_t> released; // nodes whose images are no longer needed once this one is done
};

struct Schedule {
    std::vector<ScheduledNode> steps;
    std::uint64_t peakBytes = 0; // estimate of the memory that images take at the same time
};

// The outputs are indices into Program::outputs, each once.
Schedule makeSchedule(const Program& program, const std::vector<std::size_t>& outputs,
                      const InputValues& inputs);

} // namespace embedded
