#include "embedded/nodes/ImageInput.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { ImageReference, Colour, Fallback };
enum Source { Connected, HostImage }; // the port, then what the image parameter refers to

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const auto channels = static_cast<std::size_t>(run.channels);
    if (!run.connected(Connected) && !run.connected(HostImage)) {
        return makeRowKernel([fill = run.parameters[Fallback].floats,
                              channels](const Segment& segment, const SourceRow*, float* const* result) {
            for (std::size_t c = 0; c < channels; ++c) std::fill_n(result[c], segment.count, fill[c]);
        });
    }
    return makeRowKernel([source = run.connected(Connected) ? Connected : HostImage,
                          channels](const Segment& segment, const SourceRow* sources, float* const* result) {
        for (std::size_t c = 0; c < channels; ++c)
            std::copy_n(sources[source].channels[c], segment.count, result[c]);
    });
}

// The fallback counts even where there is an image; it is opaque as a rule.
bool hasAlpha(const std::vector<Value>& parameters, const std::vector<int>& sourceChannels) {
    if (sourceChannels[Connected] > 0) return sourceChannels[Connected] == 4;
    if (sourceChannels[HostImage] > 0) return sourceChannels[HostImage] == 4;
    return parameters[Fallback].floats[3] != 1.0f;
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind imageInputKind() {
    return {
        2,
        "imageInput",
        "An image from outside: from a linked program when \"connected\" is fed, else what the host set for "
        "the image parameter, else the fallback.",
        {{"connected", PortChannels::Any, false, 0}},
        {number("image", ValueType::Image, 0, 0, 0, "the image input"),
         choice("colour", {"gray", "colour"}, 1, "kind of the result"),
         colour("fallback", {0.5, 0.5, 0.5, 1},
                "linear colour, or in the first component gray, where there is no image")},
        ResultChannels::ByParameter,
        hasAlpha,
        nullptr,
        4,
        &kernel};
}

} // namespace embedded
