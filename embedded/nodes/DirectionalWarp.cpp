#include "embedded/nodes/DirectionalWarp.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/Arithmetic.h"
#include "embedded/rows/WarpRows.h"

#include <array>

namespace embedded {
namespace {

enum Parameter { Angle, Intensity, Still };
enum Port { Source, Amount };

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const ImageView& image = run.images[Source];
    const std::array<Plane, 4> source = {image.plane(0), image.plane(1), image.plane(2), image.plane(3)};
    const float distance = run.number(Intensity) * static_cast<float>(run.shorterSide());
    const WarpDirection direction = {distance * cosineOfTurns(run.number(Angle)),
                                     distance * sineOfTurns(run.number(Angle)), run.number(Still)};
    return makeRowKernel([source, channels = run.channels, direction, row = directionalWarpRow.chosen()](
                             const Segment& segment, const SourceRow* sources, float* const* result) {
        row(source.data(), channels, direction, sources[Amount].channels[0], segment.y, segment.x,
            segment.count, result);
    });
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind directionalWarpKind() {
    return {30,
            "directionalWarp",
            "Displaces the source along one direction, each pixel by its amount; wraps around the edges.",
            {{"source", PortChannels::Any, true, anywhere}, {"amount", PortChannels::Gray, true, 0}},
            {number("angle", ValueType::Float, 0, -1, 1,
                    "where larger amounts go: turns, clockwise from the right"),
             number("intensity", ValueType::Float, 0.05, -1, 1,
                    "displacement for amounts that differ by 1, relative to the image's shorter side"),
             number("still", ValueType::Float, 0.5, -16, 16,
                    "the amount that stays where it is; smaller ones go the other way")},
            ResultChannels::Widest,
            nullptr,
            nullptr,
            80,
            &kernel};
}

} // namespace embedded
