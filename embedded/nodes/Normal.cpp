#include "embedded/nodes/Normal.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/NormalRows.h"

namespace embedded {
namespace {

enum Parameter { Strength, Format };
enum FormatChoice { YUp, YDown };

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    // Half of it, since the slopes are taken over two pixels.
    const float scale = 0.005f * run.number(Strength) * static_cast<float>(run.shorterSide());
    const float greenSign = run.integer(Format) == YUp ? 1.0f : -1.0f;
    return makeRowKernel([heights = run.images[0].plane(0), scale, greenSign, row = normalRow.chosen()](
                             const Segment& segment, const SourceRow*, float* const* result) {
        row(heights, scale, greenSign, segment.y, segment.x, segment.count, result);
    });
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind normalKind() {
    return {12,
            "normal",
            "Normals of a height image, each component from -1 to 1 stored as 0 to 1.",
            {{"height", PortChannels::Gray, true, 1}},
            {number("strength", ValueType::Float, 3, -100, 100,
                    "how far a height of 1 stands out, in hundredths of the image's shorter side"),
             choice("format", {"yUp", "yDown"}, 0, "green grows towards the image's top or its bottom")},
            ResultChannels::Colour,
            nullptr,
            nullptr,
            20,
            &kernel};
}

} // namespace embedded
