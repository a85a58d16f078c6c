#include "embedded/nodes/Distance.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/DistanceRows.h"

#include <algorithm>
#include <vector>

namespace embedded {
namespace {

enum Parameter { Threshold, Side, Range };
enum SideChoice { Outside, Inside };

// The lowest parabola at each place of a row. The row and what is at either side of it, up to half a row,
// hold the nearest place of everything that wraps around. Squares stay below 2^30 for sides up to 2^14.
class Envelope {
public:
    // Parabolas count that are nearer than the reach.
    Envelope(int width, int reach)
        : width_(width)
        , reach_(reach)
        , margin_(std::min(width / 2, reach))
        , parabolas_(2 * static_cast<std::size_t>(width) + 1) {}

    // From the distances along the columns to squared distances, -1 where there is none.
    void findSquares(const float* distances, int* squares) {
        int count = 0;
        for (int place = -margin_; place < width_ + margin_; ++place) {
            const float distance = distances[place & (width_ - 1)];
            if (distance < static_cast<float>(reach_)) add(count, place, static_cast<int>(distance));
        }
        if (count == 0) {
            std::fill_n(squares, width_, -1);
            return;
        }
        std::size_t i = 0;
        for (int x = 0; x < width_; ++x) {
            while (static_cast<int>(i) + 1 < count && parabolas_[i + 1].first <= x) ++i;
            const int apart = x - parabolas_[i].place;
            squares[x] = apart * apart + parabolas_[i].height;
        }
    }

private:
    struct Parabola {
        int place;
        int height;
        int first; // where it becomes the lowest
    };

    // The first whole place at or behind where the later parabola becomes the lower one.
    static int crossing(const Parabola& last, int height, int place) {
        if (height == last.height) return (place + last.place + 1) >> 1;
        const int rise = height + place * place - last.height - last.place * last.place;
        const int twice = 2 * (place - last.place);
        return rise / twice + (rise % twice > 0 ? 1 : 0);
    }

    void add(int& count, int place, int distance) {
        const int height = distance * distance;
        int first = -width_;
        for (; count > 0; --count) {
            const Parabola& last = parabolas_[static_cast<std::size_t>(count) - 1];
            first = crossing(last, height, place);
            if (first > last.first) break;
            first = -width_;
        }
        parabolas_[static_cast<std::size_t>(count++)] = {place, height, first};
    }

    int width_;
    int reach_;
    int margin_;
    std::vector<Parabola> parabolas_;
};

// P. F. Felzenszwalb and D. P. Huttenlocher, "Distance Transforms of Sampled Functions", 2012, on whole
// numbers and wrapping around. The first pass measures along the columns, block by block, into the result;
// the second one replaces each row by the lower envelope of the parabolas over it.
class Distance : public ImageKernel {
public:
    explicit Distance(const NodeRun& run)
        : source_(run.images[0].plane(0))
        , goals_{run.number(Threshold), run.integer(Side) == Inside}
        , scale_(1.0f / (run.number(Range) * static_cast<float>(run.shorterSide()))) {
        // What is this far or farther becomes 1, wherever it is.
        while (static_cast<float>(reach_) * scale_ < 1.0f) ++reach_;
    }

    int passCount() const override { return 2; }
    int rowCount(int pass) const override {
        return pass == 0 ? (source_.width + mostDistanceColumns - 1) / mostDistanceColumns : source_.height;
    }
    int rowSamples(int pass) const override {
        return pass == 0 ? mostDistanceColumns * source_.height : 8 * source_.width;
    }

    void computeRows(int pass, int begin, int end, Image& result) override {
        if (pass == 0) {
            for (int block = begin; block < end; ++block) {
                const int first = block * mostDistanceColumns;
                measureColumns_(source_, goals_, first, std::min(mostDistanceColumns, source_.width - first),
                                result.row(0) + first, result.width());
            }
            return;
        }
        Envelope envelope(source_.width, reach_);
        std::vector<int> squares(static_cast<std::size_t>(source_.width));
        for (int y = begin; y < end; ++y) {
            envelope.findSquares(result.row(y), squares.data());
            distanceRow_(squares.data(), scale_, source_.width, result.row(y));
        }
    }

private:
    const Plane source_;
    const DistanceGoals goals_;
    const float scale_;
    int reach_ = 1;
    MeasureColumns* const measureColumns_ = measureColumns.chosen();
    DistanceRow* const distanceRow_ = distanceRow.chosen();
};

std::unique_ptr<ImageKernel> prepare(const NodeRun& run) {
    return std::make_unique<Distance>(run);
}

const NodeKernel kernel{nullptr, prepare};

} // namespace

NodeKind distanceKind() {
    return {
        22,
        "distance",
        "How far each pixel is from the nearest pixel on the other side of a threshold: 0 there, 1 at the "
        "range and beyond; wraps around the edges.",
        {{"source", PortChannels::Gray, true, anywhere}},
        {number("threshold", ValueType::Float, 0.5, -16, 16, "what is at least as bright is inside"),
         choice("side", {"outside", "inside"}, 0,
                "measured outside, where the inside is 0, or inside, where the outside is 0"),
         number("range", ValueType::Float, 0.1, 0.001, 1,
                "the distance that becomes 1, relative to the image's shorter side")},
        ResultChannels::Gray,
        nullptr,
        nullptr,
        100,
        &kernel};
}

} // namespace embedded
