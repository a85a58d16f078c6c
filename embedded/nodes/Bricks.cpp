#include "embedded/nodes/Bricks.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

NodeKind bricksKind() {
    return {
        5,
        "bricks",
        "A wall of bricks; lengths are relative to the height of a row.",
        {},
        {choice(
             "result", {"mask", "height", "id"}, 0,
             "1 on bricks and 0 in mortar, height rising from the mortar over the bevel, or a random number "
             "for each brick and the mortar around it"),
         choice("pattern", {"running", "stack"}, 0, "every second row shifted, or none"),
         number("columns", ValueType::Integer, 4, 1, 512, "bricks in a row"),
         number("rows", ValueType::Integer, 8, 1, 512,
                "rows; an even number keeps the shift alternating across the edge"),
         number("mortar", ValueType::Float, 0.1, 0, 1, "width of the joints"),
         number("bevel", ValueType::Float, 0.1, 0, 1, "width over which the height rises"),
         number("rounding", ValueType::Float, 0.05, 0, 0.5, "radius of the corners"),
         number("offset", ValueType::Float, 0.5, 0, 1, "shift of every second row, in bricks"),
         number("tilt", ValueType::Float, 0, 0, 1, "largest random slant of a brick's height"),
         seedParameter()},
        ResultChannels::Gray,
        true,
        40,
        nullptr};
}

} // namespace embedded
