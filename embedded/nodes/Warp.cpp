#include "embedded/nodes/Warp.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/nodes/Sampling.h"

namespace embedded {
namespace {

enum Parameter { Intensity };
enum Port { Source, Height, Vectors };

template <int channels>
struct Displacement {
    explicit Displacement(const NodeRun& run)
        : source(run.sources[Source])
        , heights(run.sources[Height])
        , vectors(run.sources[Vectors])
        , side(static_cast<float>(run.shorterSide()))
        , intensity(run.number(Intensity)) {}

    void computeRow(int y, float* out) const {
        const int lastX = source->width() - 1;
        const int lastY = source->height() - 1;
        const float slopeScale = heights ? 0.5f * side * side * intensity : 0.0f;
        const float vectorScale = vectors ? 2.0f * side * intensity : 0.0f;
        for (int x = 0; x <= lastX; ++x, out += channels) {
            float dx = 0.0f;
            float dy = 0.0f;
            if (heights) {
                const float* row = heights->row(y);
                dx += slopeScale * (row[(x + 1) & lastX] - row[(x - 1) & lastX]);
                dy += slopeScale * (heights->row((y + 1) & lastY)[x] - heights->row((y - 1) & lastY)[x]);
            }
            if (vectors) {
                const float* vector = vectors->row(y) + 4 * x;
                dx += vectorScale * (vector[0] - 0.5f);
                dy += vectorScale * (vector[1] - 0.5f);
            }
            sampleWrapped<channels>(*source, x, y, -dx, -dy, out);
        }
    }

    const Image* source;
    const Image* heights;
    const Image* vectors;
    float side;
    float intensity;
};

template <int channels>
std::unique_ptr<RowKernel> prepareChannels(const NodeRun& run) {
    return makeRowKernel(
        run, [warp = Displacement<channels>(run)](int y, float* out) { warp.computeRow(y, out); });
}

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return run.channels == 1 ? prepareChannels<1>(run) : prepareChannels<4>(run);
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind warpKind() {
    return {
        10,
        "warp",
        "Displaces the source; where both guides are connected, their displacements add.",
        {{"source", PortChannels::Any, true},
         {"height", PortChannels::Gray, false},
         {"vectors", PortChannels::Colour, false}},
        {number(
            "intensity", ValueType::Float, 0.01, -1, 1,
            "displacement, in shorter sides of the image, for a height that changes by 1 over that side, and "
            "for vectors at their ends (red right, green down; 0.5 is none)")},
        ResultChannels::Widest,
        true,
        40,
        &kernel};
}

} // namespace embedded
