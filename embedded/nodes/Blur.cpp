#include "embedded/nodes/Blur.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

NodeKind blurKind() {
    return {9,
            "blur",
            "Gaussian blur that wraps around the edges.",
            {{"source", PortChannels::Any, true}},
            {number("sigma", ValueType::Float, 0.01, 0, 0.25,
                    "standard deviation, relative to the image's shorter side")},
            ResultChannels::Widest,
            true,
            100,
            nullptr};
}

} // namespace embedded
