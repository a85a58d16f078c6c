#include "embedded/nodes/Uniform.h"

#include "embedded/nodes/Colours.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Colour, Fill, Encoding };

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const auto fill = linearColour(run.parameters[Fill], run.integer(Encoding));
    return makeRowKernel([fill, channels = static_cast<std::size_t>(run.channels)](
                             const Segment& segment, const SourceRow*, float* const* result) {
        for (std::size_t c = 0; c < channels; ++c) std::fill_n(result[c], segment.count, fill[c]);
    });
}

bool hasAlpha(const std::vector<Value>& parameters, const std::vector<int>&) {
    return parameters[Fill].floats[3] != 1.0f;
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind uniformKind() {
    return {1,
            "uniform",
            "One colour, or the first component of the value as gray, everywhere.",
            {},
            {choice("colour", {"gray", "colour"}, 0, "kind of the result"),
             colour("value", {0.5, 0.5, 0.5, 1}, "the colour, or in the first component the gray value"),
             encodingParameter()},
            ResultChannels::ByParameter,
            hasAlpha,
            nullptr,
            1,
            &kernel};
}

} // namespace embedded
