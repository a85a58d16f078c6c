#include "embedded/nodes/FlowSmear.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/FlowSmearRows.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Direction, Result, Length, Steps };
enum DirectionChoice { Downhill, Uphill, UpAndDown, Contours };
enum Port { Source, Height };

// Slopes are taken over two of so many parts of the shorter side (or two pixels), so that large images flow
// as small ones do.
constexpr int slopesAcross = 512;

// After B. Cabral and L. Leedom, "Imaging Vector Fields Using Line Integral Convolution", 1993, with steps of
// one length instead of those from cell to cell. Passes: the directions, the walks.
class FlowSmear : public ImageKernel {
public:
    explicit FlowSmear(const NodeRun& run)
        : run_(run)
        , directions_(run.width, run.height, 1, run.memory) {
        const int reach = std::max(run.shorterSide() / slopesAcross, 1);
        ground_ = {run.images[Height].plane(0), reach,
                   0.5f * static_cast<float>(run.shorterSide()) / static_cast<float>(reach),
                   run.integer(Direction) == Contours};
        const int steps = run.integer(Steps);
        const float length = run.number(Length) * static_cast<float>(run.shorterSide());
        // What runs downhill is met by those who walk up, as the directions point.
        const bool isReversed = run.integer(Direction) == Uphill;
        walk_ = {directions_.plane(0), steps, (isReversed ? -length : length) / static_cast<float>(steps),
                 run.integer(Direction) >= UpAndDown, static_cast<SmearResult>(run.integer(Result))};
        for (int c = 0; c < run.channels; ++c) source_[c] = run.images[Source].plane(c);
    }

    int passCount() const override { return 2; }
    int rowCount(int) const override { return run_.height; }
    int rowSamples(int) const override { return run_.width * run_.channels; }

    void computeRows(int pass, int begin, int end, Image& result) override {
        if (pass == 0) {
            for (int y = begin; y < end; ++y) flowDirectionRow.chosen()(ground_, y, directions_.row(y));
            return;
        }
        // Block by block, because walks from neighbouring rows read the same pixels.
        for (int x = 0; x < run_.width; x += smearBlock)
            for (int y = begin; y < end; ++y) smear(x, y, result);
    }

private:
    void smear(int x, int y, Image& result) const {
        float* out[4] = {};
        for (int c = 0; c < run_.channels; ++c) out[c] = result.row(y, c) + x;
        const int count = std::min(run_.width - x, smearBlock);
        flowSmearRow.chosen()(walk_, source_, run_.channels, y, x, count, out);
    }

    const NodeRun& run_;
    Image directions_;
    FlowGround ground_;
    FlowWalk walk_;
    Plane source_[4] = {};
};

std::unique_ptr<ImageKernel> prepare(const NodeRun& run) {
    return std::make_unique<FlowSmear>(run);
}

const NodeKernel kernel{nullptr, prepare};

} // namespace

NodeKind flowSmearKind() {
    return {24,
            "flowSmear",
            "Smears the source along the slopes or the contours of a height image, fading with the distance: "
            "streaks as of rain, or brush strokes.",
            {{"source", PortChannels::Any, true, anywhere}, {"height", PortChannels::Gray, true, anywhere}},
            {choice("direction", {"downhill", "uphill", "upAndDown", "contours"}, 0,
                    "where the source is carried; along contours it is carried both ways"),
             choice("result", {"mean", "darkest", "lightest"}, 0,
                    "what is taken of all that comes by a pixel, in each channel"),
             number("length", ValueType::Float, 0.05, 0, 0.25,
                    "how far each way, relative to the image's shorter side"),
             number("steps", ValueType::Integer, 16, 1, 32,
                    "how often the source is looked at on that way; the result gets smoother")},
            ResultChannels::Widest,
            nullptr,
            nullptr,
            3500,
            &kernel};
}

} // namespace embedded
