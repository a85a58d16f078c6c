#include "embedded/nodes/Normal.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

NodeKind normalKind() {
    return {12,
            "normal",
            "Normals of a height image, each component from -1 to 1 stored as 0 to 1.",
            {{"height", PortChannels::Gray, true}},
            {number("strength", ValueType::Float, 3, -100, 100,
                    "how far a height of 1 stands out, in hundredths of the image's shorter side"),
             choice("format", {"yUp", "yDown"}, 0, "green grows towards the image's top or its bottom")},
            ResultChannels::Colour,
            true,
            20,
            nullptr};
}

} // namespace embedded
