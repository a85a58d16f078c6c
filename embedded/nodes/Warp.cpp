#include "embedded/nodes/Warp.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/WarpRows.h"

#include <array>

namespace embedded {
namespace {

enum Parameter { Intensity };
enum Port { Source, Height, Vectors };

std::array<Plane, 4> planesOf(const ImageView& image) {
    return {image.plane(0), image.plane(1), image.plane(2), image.plane(3)};
}

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const auto side = static_cast<float>(run.shorterSide());
    const float intensity = run.number(Intensity);
    const Plane heights = run.connected(Height) ? run.images[Height].plane(0) : Plane{};
    return makeRowKernel(
        [source = planesOf(run.images[Source]), channels = run.channels,
         guides = WarpGuides{heights, 0.5f * side * side * intensity, 2.0f * side * intensity},
         row = warpRow.chosen()](const Segment& segment, const SourceRow* sources, float* const* result) {
            const float* const* const vectors = sources[Vectors].channels;
            row(source.data(), channels, guides, vectors[0], vectors[1], segment.y, segment.x, segment.count,
                result);
        });
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind warpKind() {
    return {
        10,
        "warp",
        "Displaces the source; where both guides are connected, their displacements add.",
        {{"source", PortChannels::Any, true, anywhere},
         {"height", PortChannels::Gray, false, 1},
         {"vectors", PortChannels::Colour, false, 0}},
        {number(
            "intensity", ValueType::Float, 0.01, -1, 1,
            "displacement, in shorter sides of the image, for a height that changes by 1 over that side, and "
            "for vectors at their ends (red right, green down; 0.5 is none)")},
        ResultChannels::Widest,
        nullptr,
        nullptr,
        80,
        &kernel};
}

} // namespace embedded
