#include "embedded/nodes/Normal.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

namespace embedded {
namespace {

enum Parameter { Strength, Format };
enum FormatChoice { YUp, YDown };

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    // Half of it, since the slopes are taken over two pixels.
    const float scale = 0.005f * run.number(Strength) * static_cast<float>(run.shorterSide());
    const float greenSign = run.integer(Format) == YUp ? 1.0f : -1.0f;
    return makeRowKernel(run, [source = run.sources[0], scale, greenSign](int y, float* out) {
        const int lastX = source->width() - 1;
        const int lastY = source->height() - 1;
        const float* above = source->row((y - 1) & lastY);
        const float* middle = source->row(y);
        const float* below = source->row((y + 1) & lastY);
        for (int x = 0; x <= lastX; ++x, out += 4) {
            const float nx = scale * (middle[(x - 1) & lastX] - middle[(x + 1) & lastX]);
            const float ny = scale * greenSign * (below[x] - above[x]);
            const float half = 0.5f / std::sqrt(nx * nx + ny * ny + 1.0f);
            out[0] = nx * half + 0.5f;
            out[1] = ny * half + 0.5f;
            out[2] = half + 0.5f;
            out[3] = 1.0f;
        }
    });
}

const NodeKernel kernel{prepare};

} // namespace

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
            &kernel};
}

} // namespace embedded
