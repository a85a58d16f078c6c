#include "embedded/nodes/DirectionalBlur.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

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

// A box of N samples along the line, N a power of two, at most a pixel apart. Each pass takes the mean of up
// to eight shifted copies of the one before, so that the passes multiply to N.
std::vector<std::vector<Tap>> passesFor(float dx, float dy, float length) {
    int doublings = 0;
    while (static_cast<float>(1 << doublings) < length) ++doublings;
    float spacing = 1.0f / static_cast<float>(1 << doublings);
    std::vector<std::vector<Tap>> passes;
    do {
        const int count = 1 << std::min(doublings, 3);
        auto& taps = passes.emplace_back();
        for (int i = 0; i < count; ++i) {
            const float place = spacing * (static_cast<float>(i) - 0.5f * static_cast<float>(count - 1));
            taps.emplace_back(dx * place, dy * place);
        }
        spacing *= static_cast<float>(count);
        doublings -= std::min(doublings, 3);
    } while (doublings > 0);
    return passes;
}

template <int channels>
class DirectionalBlurRows : public RowKernel {
public:
    explicit DirectionalBlurRows(const NodeRun& run)
        : RowKernel(run.height)
        , source_(run.sources[0]) {
        const float length = run.number(Length) * static_cast<float>(run.shorterSide());
        passes_ = passesFor(length * cosineOfTurns(run.number(Angle)),
                            length * sineOfTurns(run.number(Angle)), length);
        if (passes_.size() > 1) between_ = Image(run.width, run.height, channels);
    }

    int passCount() const override { return static_cast<int>(passes_.size()); }

    // Passes write the image between and the result in turns, the last one the result.
    void computeRows(int pass, int begin, int end, Image& result) override {
        const bool toResult = (passCount() - pass) % 2 == 1;
        Image& out = toResult ? result : between_;
        const Image& in = pass == 0 ? *source_ : toResult ? between_ : result;
        for (int y = begin; y < end; ++y) {
            std::fill_n(out.row(y), out.rowSamples(), 0.0f);
            for (const Tap& tap : passes_[static_cast<std::size_t>(pass)]) addShifted(in, tap, y, out.row(y));
            const float share = 1.0f / static_cast<float>(passes_[static_cast<std::size_t>(pass)].size());
            for (std::size_t i = 0; i < out.rowSamples(); ++i) out.row(y)[i] *= share;
        }
    }

private:
    static void addShifted(const Image& in, const Tap& tap, int y, float* out) {
        const int lastX = in.width() - 1;
        const int lastY = in.height() - 1;
        const float* upper = in.row((y + tap.y) & lastY);
        const float* lower = in.row((y + tap.y + 1) & lastY);
        for (int x = 0; x <= lastX; ++x, out += channels) {
            const int left = ((x + tap.x) & lastX) * channels;
            const int right = ((x + tap.x + 1) & lastX) * channels;
            for (int c = 0; c < channels; ++c) {
                const float above = mix(upper[left + c], upper[right + c], tap.partX);
                const float below = mix(lower[left + c], lower[right + c], tap.partX);
                out[c] += mix(above, below, tap.partY);
            }
        }
    }

    const Image* source_;
    std::vector<std::vector<Tap>> passes_;
    Image between_;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    if (run.channels == 1) return std::make_unique<DirectionalBlurRows<1>>(run);
    return std::make_unique<DirectionalBlurRows<4>>(run);
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind directionalBlurKind() {
    return {
        21,
        "directionalBlur",
        "The mean along a line through each pixel; wraps around the edges.",
        {{"source", PortChannels::Any, true}},
        {number("angle", ValueType::Float, 0, -1, 1, "direction of the line: turns, clockwise from level"),
         number("length", ValueType::Float, 0.05, 0, 1, "of the line, relative to the image's shorter side")},
        ResultChannels::Widest,
        true,
        200,
        &kernel};
}

} // namespace embedded
