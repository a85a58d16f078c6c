#include "embedded/nodes/Blend.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

NodeKind blendKind() {
    return {
        6,
        "blend",
        "Foreground over background by a blend mode; results are not clamped.",
        {{"background", PortChannels::Any, true},
         {"foreground", PortChannels::Any, true},
         {"mask", PortChannels::Gray, false}},
        {choice("mode",
                {"normal", "multiply", "screen", "overlay", "darken", "lighten", "colourDodge", "colourBurn",
                 "hardLight", "softLight", "difference", "exclusion", "add", "subtract"},
                0, "blend mode; subtract takes the foreground from the background"),
         number("opacity", ValueType::Float, 1, 0, 1, "multiplies the mask, which is 1 when not connected")},
        ResultChannels::Widest,
        true,
        20,
        nullptr};
}

} // namespace embedded
