#include "embedded/nodes/FractalNoise.h"

#include "embedded/nodes/CellAxis.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/FractalNoiseRows.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Style, Repeats, Octaves, Gain, Seed };

struct Octave {
    // Gradient noise is zero at lattice points; the random shift keeps those of the octaves from falling
    // together.
    Octave(const NodeRun& run, int columns, int rows, float octaveAmplitude, const Hash3& random)
        : across(run.width, columns, static_cast<double>(unitFloat(random.y)))
        , down(run.height, rows, static_cast<double>(unitFloat(random.z)))
        , amplitude(octaveAmplitude)
        , seed(random.x) {
        for (const float place : across.places) fades.push_back(fade(place));
    }

    CellAxis across;
    CellAxis down;
    std::vector<float> fades; // of the places across
    float amplitude;
    std::uint32_t seed;
};

// The gradients along one lattice row, as far as they were needed.
struct Gradients {
    int row = -1;
    int begin = 0;
    int end = 0;
    std::vector<float> x;
    std::vector<float> y;

    void reach(const Octave& octave, int newRow, int first, int last) {
        const int columns = octave.across.cells;
        x.resize(static_cast<std::size_t>(columns) + 2);
        y.resize(x.size());
        if (row != newRow || first < begin || first > end) begin = end = first;
        row = newRow;
        if (last <= end) return;
        gradientRow.chosen()(octave.seed, row % octave.down.cells, columns, end, last - end, x.data() + end,
                             y.data() + end);
        end = last;
    }
};

// One octave's lattice rows around the present pixel row; neighbouring pixel rows share them.
struct Lattice {
    Gradients upper;
    Gradients lower;

    void moveTo(const Octave& octave, int row, const NoiseCells& cells) {
        if (upper.row != row && lower.row == row) std::swap(upper, lower);
        upper.reach(octave, row, cells.begin, cells.end + 1);
        lower.reach(octave, row + 1, cells.begin, cells.end + 1);
    }
};

struct NoiseScratch : RowScratch {
    explicit NoiseScratch(std::size_t octaveCount)
        : lattices(octaveCount)
        , octaves(octaveCount)
        , cells(octaveCount) {}

    std::vector<Lattice> lattices;
    std::vector<NoiseOctave> octaves;
    std::vector<NoiseCells> cells;
    std::vector<float> corners;
    std::vector<float> weights;
};

class NoiseRows : public RowKernel {
public:
    explicit NoiseRows(const NodeRun& run) {
        // Octaves finer than two pixels to a cell would only alias; they still count in the amplitudes, so
        // that small pictures look like large ones.
        constexpr float toUnit = 1.41421356f; // gradient noise reaches sqrt(1/2)
        const float gain = run.number(Gain);
        const auto seed = static_cast<std::uint32_t>(run.integer(Seed));
        float amplitude = 1.0f;
        float sum = 0.0f;
        float squares = 0.0f;
        for (int i = 0; i < run.integer(Octaves); ++i, amplitude *= gain) {
            const int columns = run.integer(Repeats, 0) << i;
            const int rows = run.integer(Repeats, 1) << i;
            if (i == 0 || (2 * columns <= run.width && 2 * rows <= run.height))
                octaves_.emplace_back(run, columns, rows, amplitude,
                                      hash(seed, static_cast<std::uint32_t>(i), 3));
            sum += amplitude;
            squares += amplitude * amplitude;
        }
        // Octaves are independent: their sum spreads as the root of the squares. The factors leave about one
        // pixel in a thousand to be clamped.
        sum_.style = static_cast<NoiseStyle>(run.integer(Style));
        const bool plain = sum_.style == NoiseStyle::Plain;
        sum_.middle = plain ? 0.5f : 0.0f;
        sum_.factor = plain                                  ? 0.55f * toUnit / squareRoot(squares)
                      : sum_.style == NoiseStyle::Turbulence ? 1.5f * toUnit / sum
                                                             : 1.0f / sum;
    }

    std::unique_ptr<RowScratch> makeScratch() const override {
        return std::make_unique<NoiseScratch>(octaves_.size());
    }

    void compute(const Segment& segment, const SourceRow*, RowScratch* rowScratch,
                 float* const* result) const override {
        auto& scratch = static_cast<NoiseScratch&>(*rowScratch);
        int mostCorners = 0;
        for (std::size_t i = 0; i < octaves_.size(); ++i) {
            prepareOctave(i, segment, scratch);
            mostCorners = std::max(mostCorners, scratch.cells[i].end - scratch.cells[i].begin + 1);
        }
        reserve(scratch.corners, 2 * mostCorners);
        reserve(scratch.weights, segment.count);
        fractalNoiseRow.chosen()(sum_, scratch.octaves.data(), scratch.cells.data(),
                                 static_cast<int>(octaves_.size()), segment.x, segment.count,
                                 scratch.corners.data(), scratch.weights.data(), result[0]);
    }

private:
    void prepareOctave(std::size_t i, const Segment& segment, NoiseScratch& scratch) const {
        const Octave& octave = octaves_[i];
        const NoiseCells cells = {octave.across.cellAt(segment.x),
                                  octave.across.cellAt(segment.x + segment.count - 1) + 1};
        Lattice& lattice = scratch.lattices[i];
        lattice.moveTo(octave, octave.down.cellAt(segment.y), cells);
        const bool ridged = sum_.style == NoiseStyle::Ridged;
        scratch.cells[i] = cells;
        scratch.octaves[i] = {octave.across.places.data(),
                              octave.fades.data(),
                              octave.across.firstPixels.data(),
                              lattice.upper.x.data(),
                              lattice.upper.y.data(),
                              lattice.lower.x.data(),
                              lattice.lower.y.data(),
                              octave.down.placeAt(segment.y),
                              ridged ? 1.41421356f : octave.amplitude,
                              octave.amplitude};
    }

    static void reserve(std::vector<float>& numbers, int count) {
        if (numbers.size() < static_cast<std::size_t>(count)) numbers.resize(static_cast<std::size_t>(count));
    }

    NoiseSum sum_{};
    std::vector<Octave> octaves_;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return std::make_unique<NoiseRows>(run);
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind fractalNoiseKind() {
    return {
        3,
        "fbm",
        "Gradient noise summed over octaves, each of twice the repeats; 0 to 1 around 0.5.",
        {},
        {choice("style", {"fbm", "turbulence", "ridged"}, 0,
                "plain sum, sum of absolute values (creases), or sharp ridges"),
         number("repeats", ValueType::Integer2, 4, 1, 1024,
                "lattice cells of the first octave across and down"),
         number("octaves", ValueType::Integer, 6, 1, 12,
                "number of octaves; those finer than two pixels to a cell are left out, but for the first"),
         number("gain", ValueType::Float, 0.5, 0, 1, "amplitude of an octave relative to the one before"),
         seedParameter()},
        ResultChannels::Gray,
        nullptr,
        nullptr,
        150,
        &kernel};
}

} // namespace embedded
