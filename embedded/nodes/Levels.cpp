#include "embedded/nodes/Levels.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

NodeKind levelsKind() {
    return {
        7,
        "levels",
        "Maps the input range to the output range; alpha stays. Values outside the input range are clamped "
        "to it.",
        {{"source", PortChannels::Any, true}},
        {number("inputLow", ValueType::Float3, 0, -16, 16, "becomes outputLow"),
         number("inputHigh", ValueType::Float3, 1, -16, 16, "becomes outputHigh; below inputLow it inverts"),
         number("gamma", ValueType::Float3, 1, 0.01, 100,
                "above 1 the middle gets brighter: t becomes t^(1/gamma)"),
         number("outputLow", ValueType::Float3, 0, -16, 16, "result for inputLow"),
         number("outputHigh", ValueType::Float3, 1, -16, 16, "result for inputHigh")},
        ResultChannels::Widest,
        true,
        30,
        nullptr};
}

} // namespace embedded
