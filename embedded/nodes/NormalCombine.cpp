#include "embedded/nodes/NormalCombine.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/NormalCombineRows.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Strength };
enum Port { Base, Detail };

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel([strength = run.number(Strength), channels = run.channels,
                          row = normalCombineRow.chosen()](const Segment& segment, const SourceRow* sources,
                                                           float* const* result) {
        row(sources[Base].channels, sources[Detail].channels, strength, segment.count, result);
        if (channels == 4) std::copy_n(sources[Base].channels[3], segment.count, result[3]);
    });
}

bool hasAlpha(const std::vector<Value>&, const std::vector<int>& sourceChannels) {
    return sourceChannels[Base] == 4;
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind normalCombineKind() {
    return {25,
            "normalCombine",
            "The details of one normal map on the shapes of another, as if they had been modelled there. In "
            "both, components from -1 to 1 are stored as 0 to 1 and green grows the same way, as it does in "
            "the result. Vectors of no length count as straight up; alpha is the base's.",
            {{"base", PortChannels::Colour, true, 0}, {"detail", PortChannels::Colour, true, 0}},
            {number("strength", ValueType::Float, 1, -16, 16,
                    "factor of the detail's slopes; below 0 what stands out goes in")},
            ResultChannels::Colour,
            hasAlpha,
            nullptr,
            80,
            &kernel};
}

} // namespace embedded
