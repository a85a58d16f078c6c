#include "embedded/nodes/ImageInput.h"

#include "embedded/nodes/Colours.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { ImageReference, Colour, Fallback };

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const Image* image = run.sources[0] ? run.sources[0] : run.image;
    if (!image) {
        const auto fill = run.parameters[Fallback].floats;
        return makeRowKernel(run, [&run, fill](int, float* out) { fillRow(out, run, fill); });
    }
    return makeRowKernel(
        run, [image](int y, float* out) { std::copy_n(image->row(y), image->rowSamples(), out); });
}

const NodeKernel kernel{prepare};

} // namespace

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
        &kernel};
}

} // namespace embedded
