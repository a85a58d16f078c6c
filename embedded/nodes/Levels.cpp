#include "embedded/nodes/Levels.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/LevelsRows.h"

#include <algorithm>
#include <array>

namespace embedded {
namespace {

enum Parameter { InputLow, InputHigh, Gamma, OutputLow, OutputHigh };

LevelsCurve curveOf(const NodeRun& run, std::size_t channel) {
    const float low = run.number(InputLow, channel);
    const float range = run.number(InputHigh, channel) - low;
    return {low,
            range == 0 ? 0.0f : 1.0f / range,
            range == 0,
            1.0f / run.number(Gamma, channel),
            run.number(OutputLow, channel),
            run.number(OutputHigh, channel)};
}

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const std::array<LevelsCurve, 3> curves = {curveOf(run, 0), curveOf(run, 1), curveOf(run, 2)};
    return makeRowKernel([curves, channels = run.channels, mapRow = levelsRow.chosen()](
                             const Segment& segment, const SourceRow* sources, float* const* result) {
        for (int c = 0; c < channels; ++c) {
            const float* const in = sources[0].channels[c];
            if (c < 3)
                mapRow(curves[static_cast<std::size_t>(c)], in, segment.count, result[c]);
            else
                std::copy_n(in, segment.count, result[c]);
        }
    });
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind levelsKind() {
    return {
        7,
        "levels",
        "Maps the input range to the output range; alpha stays. Values outside the input range are clamped "
        "to it.",
        {{"source", PortChannels::Any, true, 0}},
        {number("inputLow", ValueType::Float3, 0, -16, 16, "becomes outputLow"),
         number("inputHigh", ValueType::Float3, 1, -16, 16, "becomes outputHigh; below inputLow it inverts"),
         number("gamma", ValueType::Float3, 1, 0.01, 100,
                "above 1 the middle gets brighter: t becomes t^(1/gamma)"),
         number("outputLow", ValueType::Float3, 0, -16, 16, "result for inputLow"),
         number("outputHigh", ValueType::Float3, 1, -16, 16, "result for inputHigh")},
        ResultChannels::Widest,
        nullptr,
        nullptr,
        60,
        &kernel};
}

} // namespace embedded
