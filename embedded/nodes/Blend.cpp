#include "embedded/nodes/Blend.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/BlendRows.h"

namespace embedded {
namespace {

enum Parameter { Mode, Opacity };
enum Port { Background, Foreground, Mask };

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel(
        [mode = static_cast<BlendMode>(run.integer(Mode)), channels = run.channels,
         opacity = run.number(Opacity), hasForegroundAlpha = run.sourceChannels[Foreground] == 4,
         row = blendRow.chosen()](const Segment& segment, const SourceRow* sources, float* const* result) {
            const BlendSources blended = {channels,
                                          sources[Background].channels,
                                          sources[Foreground].channels,
                                          sources[Mask].channels[0],
                                          opacity,
                                          hasForegroundAlpha};
            row(mode, blended, segment.count, result);
        });
}

// Nothing shows through an opaque background.
bool hasAlpha(const std::vector<Value>&, const std::vector<int>& sourceChannels) {
    return sourceChannels[Background] == 4;
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind blendKind() {
    return {
        6,
        "blend",
        "Foreground over background by a blend mode; results are not clamped.",
        {{"background", PortChannels::Any, true, 0},
         {"foreground", PortChannels::Any, true, 0},
         {"mask", PortChannels::Gray, false, 0}},
        {choice("mode",
                {"normal", "multiply", "screen", "overlay", "darken", "lighten", "colourDodge", "colourBurn",
                 "hardLight", "softLight", "difference", "exclusion", "add", "subtract", "hue", "saturation",
                 "colour", "luminosity"},
                0,
                "blend mode; subtract takes the foreground from the background; the last four give that "
                "property of the foreground to the background"),
         number("opacity", ValueType::Float, 1, 0, 1, "multiplies the mask, which is 1 when not connected")},
        ResultChannels::Widest,
        hasAlpha,
        nullptr,
        100,
        &kernel};
}

} // namespace embedded
