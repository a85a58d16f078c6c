#include "embedded/nodes/Uniform.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

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
            nullptr};
}

} // namespace embedded
