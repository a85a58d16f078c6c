#include "embedded/nodes/Uniform.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/Colours.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Colour, Fill, Encoding };

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const auto fill = linearColour(run.parameters[Fill], run.integer(Encoding));
    return makeRowKernel(run, [&run, fill](int, float* out) { fillRow(out, run, fill); });
}

const NodeKernel kernel{prepare};

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
            true,
            1,
            &kernel};
}

} // namespace embedded
