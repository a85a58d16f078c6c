#include "embedded/nodes/HueSaturationLightness.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/HueSaturationLightnessRows.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Hue, Saturation, Lightness };

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const HueChange change = {6.0f * run.number(Hue), run.number(Saturation), run.number(Lightness)};
    return makeRowKernel([change, channels = run.channels, row = hueSaturationLightnessRow.chosen()](
                             const Segment& segment, const SourceRow* sources, float* const* result) {
        row(change, sources[0].channels, segment.count, result);
        if (channels == 4) std::copy_n(sources[0].channels[3], segment.count, result[3]);
    });
}

bool hasAlpha(const std::vector<Value>&, const std::vector<int>& sourceChannels) {
    return sourceChannels[0] == 4;
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind hueSaturationLightnessKind() {
    return {19,
            "hueSaturationLightness",
            "Shifts the hue, scales saturation and lightness; alpha stays. Colours are clamped to 0 to 1.",
            {{"source", PortChannels::Colour, true, 0}},
            {number("hue", ValueType::Float, 0, -1, 1, "turns from red over green and blue back to red"),
             number("saturation", ValueType::Float, 1, 0, 16, "factor; 0 gives gray"),
             number("lightness", ValueType::Float, 1, 0, 16, "factor; 0 gives black")},
            ResultChannels::Colour,
            hasAlpha,
            nullptr,
            90,
            &kernel};
}

} // namespace embedded
