#include "embedded/nodes/Distance.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Threshold, Side, Range };
enum SideChoice { Outside, Inside };

// Columns that the first pass takes at a time.
constexpr int blockWidth = 64;

// Larger than any distance within a column.
constexpr float nothing = 65536.0f;

// The lowest parabola at each place of a row. The row and half a row at either side hold the nearest place
// of everything that wraps around. Squares stay below 2^30 for sides up to 2^14.
class Envelope {
public:
    explicit Envelope(int width)
        : width_(width)
        , parabolas_(2 * static_cast<std::size_t>(width) + 1) {}

    // From the distances along the columns to squared distances.
    template <typename Emit>
    void eachSquare(const float* distances, Emit emit) {
        int count = 0;
        for (int place = -width_ / 2; place < width_ + width_ / 2; ++place) {
            const float distance = distances[place & (width_ - 1)];
            if (distance < nothing) add(count, place, static_cast<int>(distance));
        }
        std::size_t i = 0;
        for (int x = 0; x < width_; ++x) {
            while (static_cast<int>(i) + 1 < count && parabolas_[i + 1].first <= x) ++i;
            const int apart = x - parabolas_[i].place;
            emit(x, count == 0 ? -1 : apart * apart + parabolas_[i].height);
        }
    }

private:
    struct Parabola {
        int place;
        int height;
        int first; // where it becomes the lowest
    };

    void add(int& count, int place, int distance) {
        const int height = distance * distance;
        int first = -width_;
        for (; count > 0; --count) {
            const Parabola& last = parabolas_[static_cast<std::size_t>(count) - 1];
            const int rise = height + place * place - last.height - last.place * last.place;
            const int twice = 2 * (place - last.place);
            // The first whole place at or behind the crossing.
            first = rise / twice + (rise % twice > 0 ? 1 : 0);
            if (first > last.first) break;
            first = -width_;
        }
        parabolas_[static_cast<std::size_t>(count++)] = {place, height, first};
    }

    int width_;
    std::vector<Parabola> parabolas_;
};

// P. F. Felzenszwalb and D. P. Huttenlocher, "Distance Transforms of Sampled Functions", 2012, on whole
// numbers and wrapping around. The first pass measures along the columns, block by block, into the result;
// the second one replaces each row by the lower envelope of the parabolas over it.
class DistanceRows : public RowKernel {
public:
    explicit DistanceRows(const NodeRun& run)
        : RowKernel(run.height)
        , source_(run.sources[0])
        , threshold_(run.number(Threshold))
        , inside_(run.integer(Side) == Inside)
        , scale_(1.0f / (run.number(Range) * static_cast<float>(run.shorterSide()))) {}

    int passCount() const override { return 2; }
    int rowCount(int pass) const override {
        return pass == 0 ? (source_->width() + blockWidth - 1) / blockWidth : RowKernel::rowCount(pass);
    }

    void computeRows(int pass, int begin, int end, Image& result) override {
        if (pass == 0) {
            for (int block = begin; block < end; ++block) measureColumns(block, result);
            return;
        }
        Envelope envelope(source_->width());
        for (int y = begin; y < end; ++y) {
            float* row = result.row(y);
            envelope.eachSquare(row, [=](int x, int square) {
                const float distance = std::sqrt(static_cast<float>(square < 0 ? 0 : square)) * scale_;
                row[x] = square < 0 ? 1.0f : clamp(distance, 0.0f, 1.0f);
            });
        }
    }

private:
    // Twice around in each direction, so that what lies beyond an edge is seen.
    void measureColumns(int block, Image& result) const {
        const int first = block * blockWidth;
        const int count = std::min(blockWidth, source_->width() - first);
        const int height = source_->height();
        float away[blockWidth];
        std::fill_n(away, blockWidth, nothing);
        for (int i = 0; i < 2 * height; ++i) {
            const float* in = source_->row(i & (height - 1)) + first;
            float* out = result.row(i & (height - 1)) + first;
            for (int x = 0; x < count; ++x) {
                away[x] = isGoal(in[x]) ? 0.0f : std::min(away[x] + 1.0f, nothing);
                out[x] = away[x];
            }
        }
        std::fill_n(away, blockWidth, nothing);
        for (int i = 2 * height - 1; i >= 0; --i) {
            float* out = result.row(i & (height - 1)) + first;
            for (int x = 0; x < count; ++x) {
                away[x] = std::min(away[x] + 1.0f, out[x]);
                out[x] = away[x];
            }
        }
    }

    bool isGoal(float value) const { return (value >= threshold_) != inside_; }

    const Image* source_;
    float threshold_;
    bool inside_;
    float scale_;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return std::make_unique<DistanceRows>(run);
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind distanceKind() {
    return {
        22,
        "distance",
        "How far each pixel is from the nearest pixel on the other side of a threshold: 0 there, 1 at the "
        "range and beyond; wraps around the edges.",
        {{"source", PortChannels::Gray, true}},
        {number("threshold", ValueType::Float, 0.5, -16, 16, "what is at least as bright is inside"),
         choice("side", {"outside", "inside"}, 0,
                "measured outside, where the inside is 0, or inside, where the outside is 0"),
         number("range", ValueType::Float, 0.1, 0.001, 1,
                "the distance that becomes 1, relative to the image's shorter side")},
        ResultChannels::Gray,
        true,
        40,
        &kernel};
}

} // namespace embedded
