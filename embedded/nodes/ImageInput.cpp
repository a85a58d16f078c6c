#include "embedded/nodes/ImageInput.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

NodeKind imageInputKind() {
    return {
        2,
        "imageInput",
        "An image from outside: from a linked program when \"connected\" is fed, else what the host set for "
        "the image parameter, else the fallback.",
        {{"connected", PortChannels::Any, false}},
        {number("image", ValueType::Image, 0, 0, 0, "the image input"),
         choice("colour", {"gray", "colour"}, 1, "kind of the result"),
         colour("fallback", {0.5, 0.5, 0.5, 1},
                "linear colour, or in the first component gray, where there is no image")},
        ResultChannels::ByParameter,
        true,
        4,
        nullptr};
}

} // namespace embedded
