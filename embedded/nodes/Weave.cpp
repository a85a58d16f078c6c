#include "embedded/nodes/Weave.h"

#include "embedded/nodes/CellAxis.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/WeaveRows.h"

namespace embedded {
namespace {

enum Parameter { Result, Pattern, Threads, Width, Seed };
enum PatternChoice { Plain, Twill, Satin };

// After so many threads a weave repeats.
constexpr int periods[] = {2, 4, 5};

// Upright threads are the warp, level ones the weft. Crossings count from 0.
bool warpIsOnTop(int pattern, int column, int row) {
    if (pattern == Plain) return (column + row) % 2 == 0;
    if (pattern == Twill) return (column + row) % 4 < 2; // over two, under two
    return (column + 2 * row) % 5 != 0;                  // over four, under one, two threads further each row
}

int roundedUp(int count, int period) {
    return (count + period - 1) / period * period;
}

// An axis in halves of threads, from an edge to the middle of a thread or from there to the other edge:
// within one the crossings before and behind stay the same.
struct ThreadAxis {
    ThreadAxis(int size, int threadCount, float halfWidth)
        : threads(threadCount)
        , halves(size, 2 * threadCount) {
        const float pixel = static_cast<float>(threads) / static_cast<float>(size);
        for (int i = 0; i < size; ++i) {
            const bool isFirst = halves.cellAt(i) % 2 == 0;
            const float place = 0.5f * halves.placeAt(i);
            const float offset = isFirst ? 0.5f - place : place; // without sign
            const float part = offset / halfWidth;
            offsets.push_back(offset);
            covers.push_back(clamp((halfWidth - offset) / pixel + 0.5f, 0.0f, 1.0f));
            roundings.push_back(0.5f * squareRoot(clamp(1.0f - part * part, 0.0f, 1.0f)));
            ways.push_back(smooth(isFirst ? place + 0.5f : place));
        }
    }

    // The middles of the threads before and behind a half, wrapped around.
    int before(int half) const { return (half / 2 + (half % 2 == 0 ? threads - 1 : 0)) % threads; }
    int behind(int half) const { return (before(half) + 1) % threads; }

    int threads;
    CellAxis halves;
    std::vector<float> offsets; // see ThreadPlaces
    std::vector<float> covers;
    std::vector<float> roundings;
    std::vector<float> ways;
};

struct ThreadScratch : RowScratch {
    std::vector<ThreadRun> runs;
};

class Cloth : public RowKernel {
public:
    explicit Cloth(const NodeRun& run)
        : result_(static_cast<WeaveResult>(run.integer(Result)))
        , pattern_(run.integer(Pattern))
        , halfWidth_(0.5f * run.number(Width))
        , across_(run.width, roundedUp(run.integer(Threads, 0), periods[pattern_]), halfWidth_)
        , down_(run.height, roundedUp(run.integer(Threads, 1), periods[pattern_]), halfWidth_)
        , seed_(static_cast<std::uint32_t>(run.integer(Seed))) {}

    std::unique_ptr<RowScratch> makeScratch() const override { return std::make_unique<ThreadScratch>(); }

    void compute(const Segment& segment, const SourceRow*, RowScratch* scratch,
                 float* const* result) const override {
        std::vector<ThreadRun>& runs = static_cast<ThreadScratch&>(*scratch).runs;
        runs.clear();
        eachCell(across_.halves, segment.x, segment.count, [&](int half, int begin, int end) {
            runs.push_back(runOf(half, segment.y, begin - segment.x, end - segment.x));
        });
        const auto y = static_cast<std::size_t>(segment.y);
        const WeaveRowOf row = {
            result_,
            halfWidth_,
            down_.offsets[y],
            down_.covers[y],
            down_.roundings[y],
            result_ == WeaveResult::Upright ? 0.0f : idOf(down_.halves.cellAt(segment.y) / 2, 0)};
        const ThreadPlaces places = {across_.offsets.data() + segment.x, across_.covers.data() + segment.x,
                                     across_.roundings.data() + segment.x, across_.ways.data() + segment.x};
        weaveRow.chosen()(row, runs.data(), static_cast<int>(runs.size()), places, result[0]);
    }

private:
    // Threads go up and down between their crossings.
    ThreadRun runOf(int half, int y, int begin, int end) const {
        const int column = half / 2;
        const int downHalf = down_.halves.cellAt(y);
        const int row = downHalf / 2;
        const float way = down_.ways[static_cast<std::size_t>(y)];
        return {
            begin,
            end,
            mix(warpLevel(column, down_.before(downHalf)), warpLevel(column, down_.behind(downHalf)), way),
            0.5f - warpLevel(across_.before(half), row),
            0.5f - warpLevel(across_.behind(half), row),
            result_ == WeaveResult::Upright ? 1.0f : idOf(column, 1)};
    }

    float warpLevel(int column, int row) const { return warpIsOnTop(pattern_, column, row) ? 0.5f : 0.0f; }

    float idOf(int thread, std::uint32_t isWarp) const {
        return unitFloat(hash(static_cast<std::uint32_t>(thread), isWarp, seed_).x);
    }

    WeaveResult result_;
    int pattern_;
    float halfWidth_;
    ThreadAxis across_;
    ThreadAxis down_;
    std::uint32_t seed_;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return std::make_unique<Cloth>(run);
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind weaveKind() {
    return {
        18,
        "weave",
        "Cloth of upright and level threads.",
        {},
        {choice("result", {"mask", "height", "id", "upright"}, 0,
                "1 on threads and 0 in gaps, the height of the threads, a random number for each thread and "
                "the gaps beside it, or 1 where an upright thread lies on top"),
         choice("pattern", {"plain", "twill", "satin"}, 0,
                "over one, under one; over two, under two; over four, under one"),
         number("threads", ValueType::Integer2, 16, 1, 1024,
                "threads across and down, rounded up to whole repeats of the pattern: 2, 4 or 5 threads"),
         number("width", ValueType::Float, 0.9, 0.01, 1, "of a thread; 1 leaves no gaps"), seedParameter()},
        ResultChannels::Gray,
        nullptr,
        nullptr,
        60,
        &kernel};
}

} // namespace embedded
