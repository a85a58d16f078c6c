#include "embedded/nodes/Weave.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

namespace embedded {
namespace {

enum Parameter { Result, Pattern, Threads, Width, Seed };
enum ResultChoice { Mask, Height, Id, Upright };
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

// A place along one axis: the thread around it, how far from its middle, in threads.
struct Place {
    Place(int pixel, int size, int threads) {
        const double position = (pixel + 0.5) * threads / size;
        thread = static_cast<int>(position);
        offset = static_cast<float>(position - thread) - 0.5f;
        // The crossings before and behind, wrapped around, and how far it is from one to the other.
        before = offset < 0 ? (thread + threads - 1) % threads : thread;
        behind = (before + 1) % threads;
        way = smooth(offset < 0 ? offset + 1.0f : offset);
    }

    int thread;
    float offset;
    int before;
    int behind;
    float way;
};

struct Cloth {
    explicit Cloth(const NodeRun& run)
        : height(run.height)
        , result(run.integer(Result))
        , pattern(run.integer(Pattern))
        , columns(roundedUp(run.integer(Threads, 0), periods[pattern]))
        , rows(roundedUp(run.integer(Threads, 1), periods[pattern]))
        , pixelAcross(static_cast<float>(columns) / static_cast<float>(run.width))
        , pixelDown(static_cast<float>(rows) / static_cast<float>(height))
        , halfWidth(0.5f * run.number(Width))
        , seed(static_cast<std::uint32_t>(run.integer(Seed))) {
        for (int x = 0; x < run.width; ++x) places.emplace_back(x, run.width, columns);
    }

    void computeRow(int y, float* out) const {
        const Place down(y, height, rows);
        for (const Place& across : places)
            *out++ = result == Mask     ? cover(across, down)
                     : result == Height ? heightAt(across, down)
                                        : threadValue(across, down);
    }

    float cover(const Place& across, const Place& down) const {
        const float warp = coverOf(across.offset, pixelAcross);
        const float weft = coverOf(down.offset, pixelDown);
        return warp > weft ? warp : weft;
    }

    float coverOf(float offset, float pixel) const {
        return clamp((halfWidth - absolute(offset)) / pixel + 0.5f, 0.0f, 1.0f);
    }

    float heightAt(const Place& across, const Place& down) const {
        const float warp = warpHeight(across, down) * coverOf(across.offset, pixelAcross);
        const float weft = weftHeight(across, down) * coverOf(down.offset, pixelDown);
        return warp > weft ? warp : weft;
    }

    // Threads go up and down between their crossings.
    float warpHeight(const Place& across, const Place& down) const {
        const float start = warpIsOnTop(pattern, across.thread, down.before) ? 1.0f : 0.0f;
        const float end = warpIsOnTop(pattern, across.thread, down.behind) ? 1.0f : 0.0f;
        return 0.5f * mix(start, end, down.way) + 0.5f * roundness(across.offset);
    }

    float weftHeight(const Place& across, const Place& down) const {
        const float start = warpIsOnTop(pattern, across.before, down.thread) ? 0.0f : 1.0f;
        const float end = warpIsOnTop(pattern, across.behind, down.thread) ? 0.0f : 1.0f;
        return 0.5f * mix(start, end, across.way) + 0.5f * roundness(down.offset);
    }

    float roundness(float offset) const {
        const float place = offset / halfWidth;
        return std::sqrt(clamp(1.0f - place * place, 0.0f, 1.0f));
    }

    float threadValue(const Place& across, const Place& down) const {
        const bool warp = showsWarp(across, down);
        if (result == Upright) return warp ? 1.0f : 0.0f;
        const auto thread = static_cast<std::uint32_t>(warp ? across.thread : down.thread);
        return unitFloat(hash(thread, warp ? 1 : 0, seed).x);
    }

    // The higher thread; gaps belong to the nearer one.
    bool showsWarp(const Place& across, const Place& down) const {
        const bool onWarp = absolute(across.offset) <= halfWidth;
        const bool onWeft = absolute(down.offset) <= halfWidth;
        if (onWarp && onWeft) return warpHeight(across, down) >= weftHeight(across, down);
        return onWarp || (!onWeft && absolute(across.offset) <= absolute(down.offset));
    }

    int height;
    int result;
    int pattern;
    int columns;
    int rows;
    float pixelAcross; // in threads
    float pixelDown;
    float halfWidth;
    std::uint32_t seed;
    std::vector<Place> places; // of the pixels across
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel(run, [cloth = Cloth(run)](int y, float* out) { cloth.computeRow(y, out); });
}

const NodeKernel kernel{prepare};

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
        true,
        60,
        &kernel};
}

} // namespace embedded
