#include "embedded/nodes/DirectionalBlur.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/Arithmetic.h"
#include "embedded/rows/DirectionalBlurRows.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Angle, Length };

// Where a copy of the image lies: whole pixels and the rest, 0 to 1.
struct Tap {
    Tap(float dx, float dy)
        : x(floorToInt(dx))
        , y(floorToInt(dy))
        , partX(dx - static_cast<float>(x))
        , partY(dy - static_cast<float>(y)) {}

    int x, y;
    float partX, partY;
};

constexpr int mostDoublings = 3; // of samples in a pass

// A box of N samples along the line, N a power of two, at most a pixel apart. Each pass takes the mean of up
// to eight shifted copies of the one before, so that the passes multiply to N.
std::vector<std::vector<Tap>> passesFor(float dx, float dy, float length) {
    int doublings = 0;
    while (static_cast<float>(1 << doublings) < length) ++doublings;
    float spacing = 1.0f / static_cast<float>(1 << doublings);
    std::vector<std::vector<Tap>> passes;
    do {
        const int count = 1 << std::min(doublings, mostDoublings);
        auto& taps = passes.emplace_back();
        for (int i = 0; i < count; ++i) {
            const float place = spacing * (static_cast<float>(i) - 0.5f * static_cast<float>(count - 1));
            taps.emplace_back(dx * place, dy * place);
        }
        spacing *= static_cast<float>(count);
        doublings -= std::min(doublings, mostDoublings);
    } while (doublings > 0);
    return passes;
}

class DirectionalBlur : public ImageKernel {
public:
    explicit DirectionalBlur(const NodeRun& run)
        : source_(run.images[0])
        , width_(run.width)
        , height_(run.height) {
        const float length = run.number(Length) * static_cast<float>(run.shorterSide());
        passes_ = passesFor(length * cosineOfTurns(run.number(Angle)),
                            length * sineOfTurns(run.number(Angle)), length);
        if (passes_.size() > 1) between_ = Image(width_, height_, run.channels, run.memory);
    }

    int passCount() const override { return static_cast<int>(passes_.size()); }
    int rowCount(int) const override { return height_; }
    int rowSamples(int pass) const override {
        return width_ * source_.channels() * static_cast<int>(passes_[static_cast<std::size_t>(pass)].size());
    }

    // Passes write the image between and the result in turns, the last one the result.
    void computeRows(int pass, int begin, int end, Image& result) override {
        const bool toResult = (passCount() - pass) % 2 == 1;
        Image& out = toResult ? result : between_;
        const Image& before = toResult ? between_ : result;
        for (int y = begin; y < end; ++y) {
            for (int c = 0; c < source_.channels(); ++c) {
                const Plane in = pass == 0 ? source_.plane(c) : before.plane(c);
                computeRow(passes_[static_cast<std::size_t>(pass)], in, y, out.row(y, c));
            }
        }
    }

private:
    void computeRow(const std::vector<Tap>& taps, const Plane& in, int y, float* out) const {
        const int lastX = width_ - 1;
        const int lastY = height_ - 1;
        ShiftedRow rows[1 << mostDoublings];
        for (std::size_t i = 0; i < taps.size(); ++i)
            rows[i] = {rowOf(in, (y + taps[i].y) & lastY), rowOf(in, (y + taps[i].y + 1) & lastY),
                       taps[i].x & lastX, taps[i].partX, taps[i].partY};
        meanOfShiftedRows_(rows, static_cast<int>(taps.size()), width_, out);
    }

    const ImageView source_;
    const int width_;
    const int height_;
    std::vector<std::vector<Tap>> passes_;
    Image between_;
    MeanOfShiftedRows* const meanOfShiftedRows_ = meanOfShiftedRows.chosen();
};

std::unique_ptr<ImageKernel> prepare(const NodeRun& run) {
    return std::make_unique<DirectionalBlur>(run);
}

const NodeKernel kernel{nullptr, prepare};

} // namespace

NodeKind directionalBlurKind() {
    return {
        21,
        "directionalBlur",
        "The mean along a line through each pixel; wraps around the edges.",
        {{"source", PortChannels::Any, true, anywhere}},
        {number("angle", ValueType::Float, 0, -1, 1, "direction of the line: turns, clockwise from level"),
         number("length", ValueType::Float, 0.05, 0, 1, "of the line, relative to the image's shorter side")},
        ResultChannels::Widest,
        nullptr,
        nullptr,
        400,
        &kernel};
}

} // namespace embedded
