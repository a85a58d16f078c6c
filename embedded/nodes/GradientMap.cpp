#include "embedded/nodes/GradientMap.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

NodeKind gradientMapKind() {
    return {
        8,
        "gradientMap",
        "Colours gray values by a gradient; beyond the first and last stop their colours hold.",
        {{"source", PortChannels::Gray, true}},
        {number("stops", ValueType::Integer, 2, 2, 6, "number of stops used; they may stand in any order"),
         encodingParameter(),
         choice("interpolation", {"linear", "smooth", "steps"}, 0,
                "between stops: straight, eased, or the lower stop's colour"),
         number("position1", ValueType::Float, 0, -16, 16, "gray value of the first stop"),
         colour("colour1", {0, 0, 0, 1}, "colour of the first stop"),
         number("position2", ValueType::Float, 1, -16, 16, "gray value of the second stop"),
         colour("colour2", {1, 1, 1, 1}, "colour of the second stop"),
         number("position3", ValueType::Float, 1, -16, 16, "gray value of the third stop"),
         colour("colour3", {1, 1, 1, 1}, "colour of the third stop"),
         number("position4", ValueType::Float, 1, -16, 16, "gray value of the fourth stop"),
         colour("colour4", {1, 1, 1, 1}, "colour of the fourth stop"),
         number("position5", ValueType::Float, 1, -16, 16, "gray value of the fifth stop"),
         colour("colour5", {1, 1, 1, 1}, "colour of the fifth stop"),
         number("position6", ValueType::Float, 1, -16, 16, "gray value of the sixth stop"),
         colour("colour6", {1, 1, 1, 1}, "colour of the sixth stop")},
        ResultChannels::Colour,
        true,
        25,
        nullptr};
}

} // namespace embedded
