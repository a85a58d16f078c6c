#include "embedded/engine/Luminance.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/rows/LuminanceRows.h"

namespace embedded {
namespace {

std::unique_ptr<RowKernel> prepare(const NodeRun&) {
    return makeRowKernel([row = luminanceRow.chosen()](const Segment& segment, const SourceRow* sources,
                                                       float* const* result) {
        const float* const* const colour = sources[0].channels;
        row(colour[0], colour[1], colour[2], segment.count, result[0]);
    });
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

const NodeKind& luminanceKind() {
    // Never destroyed, like the others.
    static const NodeKind& kind = *new const NodeKind{0xffffffffu,
                                                      "luminance",
                                                      "Colours as gray.",
                                                      {{"source", PortChannels::Colour, true, 0}},
                                                      {},
                                                      ResultChannels::Gray,
                                                      nullptr,
                                                      nullptr,
                                                      5,
                                                      &kernel};
    return kind;
}

} // namespace embedded
