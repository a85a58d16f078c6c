#include "embedded/nodes/WhiteNoise.h"

#include "embedded/nodes/CellAxis.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/WhiteNoiseRows.h"

namespace embedded {
namespace {

enum Parameter { Repeats, Seed };

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel([across = CellAxis(run.width, run.integer(Repeats, 0)),
                          down = CellAxis(run.height, run.integer(Repeats, 1)),
                          seed = static_cast<std::uint32_t>(run.integer(Seed)), row = whiteNoiseRow.chosen()](
                             const Segment& segment, const SourceRow*, float* const* result) {
        row(seed, down.cellAt(segment.y), across.cellOf.data() + segment.x, segment.count, result[0]);
    });
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind whiteNoiseKind() {
    return {17,
            "whiteNoise",
            "A random gray for each cell, 0 to 1, all equally likely.",
            {},
            {number("repeats", ValueType::Integer2, 256, 1, 16384, "cells across and down"), seedParameter()},
            ResultChannels::Gray,
            nullptr,
            nullptr,
            30,
            &kernel};
}

} // namespace embedded
