#include "embedded/nodes/FractalNoise.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Style, Repeats, Octaves, Gain, Seed };
enum StyleChoice { Plain, Turbulence, Ridged };

// Along one axis, what does not depend on the other: for each pixel its place in its lattice cell, for each
// cell its first pixel. The lattice is shifted against the image by a part of a cell, so there is one cell
// more, which is the first one again.
struct LatticeAxis {
    LatticeAxis(int size, int cellCount, float shift)
        : cells(cellCount)
        , cellOf(static_cast<std::size_t>(size))
        , places(static_cast<std::size_t>(size))
        , firstPixels(static_cast<std::size_t>(cellCount) + 2, size) {
        int nextCell = 0;
        for (int pixel = 0; pixel < size; ++pixel) {
            const double position = (pixel + 0.5) * cellCount / size + static_cast<double>(shift);
            const int cell = static_cast<int>(position);
            cellOf[static_cast<std::size_t>(pixel)] = cell;
            places[static_cast<std::size_t>(pixel)] = static_cast<float>(position - cell);
            while (nextCell <= cell) firstPixels[static_cast<std::size_t>(nextCell++)] = pixel;
        }
    }

    int cells;
    std::vector<int> cellOf;
    std::vector<float> places;
    std::vector<int> firstPixels; // cells + 2 of them
};

struct Octave {
    // Gradient noise is zero at lattice points; the random shift keeps those of the octaves from falling
    // together.
    Octave(const NodeRun& run, int columns, int rows, float octaveAmplitude, const Hash3& random)
        : across(run.width, columns, unitFloat(random.y))
        , down(run.height, rows, unitFloat(random.z))
        , amplitude(octaveAmplitude)
        , seed(random.x) {}

    LatticeAxis across;
    LatticeAxis down;
    float amplitude;
    std::uint32_t seed;
};

struct Gradient {
    float x, y;
};

Gradient gradientAt(int column, int row, std::uint32_t seed) {
    const float turns =
        unitFloat(hash(static_cast<std::uint32_t>(column), static_cast<std::uint32_t>(row), seed).x);
    return {cosineOfTurns(turns), sineOfTurns(turns)};
}

// Gradients at the corners along one lattice row, which wraps around.
void fillGradients(const Octave& octave, int row, std::vector<Gradient>& gradients) {
    const int columns = octave.across.cells;
    gradients.resize(static_cast<std::size_t>(columns) + 2);
    for (int i = 0; i < columns; ++i)
        gradients[static_cast<std::size_t>(i)] = gradientAt(i, row % octave.down.cells, octave.seed);
    gradients[static_cast<std::size_t>(columns)] = gradients[0];
    gradients[static_cast<std::size_t>(columns) + 1] = gradients[1];
}

// One octave's lattice rows around the present pixel row; neighbouring pixel rows share them.
struct LatticeRows {
    int row = -1;
    std::vector<Gradient> upper;
    std::vector<Gradient> lower;

    void moveTo(const Octave& octave, int newRow) {
        if (newRow == row) return;
        if (row >= 0 && newRow == row + 1) {
            upper.swap(lower);
        } else {
            fillGradients(octave, newRow, upper);
        }
        fillGradients(octave, newRow + 1, lower);
        row = newRow;
    }
};

// Calls emit(x, noise) for a row of pixels. At a given height in a lattice row, the influence of each lattice
// column is a linear function of the horizontal distance to it; a pixel mixes those of its two columns.
template <typename Emit>
void eachNoise(const Octave& octave, const LatticeRows& lattice, float ty, Emit emit) {
    const float v = fade(ty);
    const float* places = octave.across.places.data();
    const auto slope = [&](std::size_t i) { return mix(lattice.upper[i].x, lattice.lower[i].x, v); };
    const auto level = [&](std::size_t i) {
        return mix(lattice.upper[i].y * ty, lattice.lower[i].y * (ty - 1.0f), v);
    };
    float leftSlope = slope(0);
    float leftLevel = level(0);
    for (std::size_t cell = 0; cell <= static_cast<std::size_t>(octave.across.cells); ++cell) {
        const float rightSlope = slope(cell + 1);
        const float rightLevel = level(cell + 1);
        const int end = octave.across.firstPixels[cell + 1];
        for (int x = octave.across.firstPixels[cell]; x < end; ++x) {
            const float tx = places[x];
            const float left = leftSlope * tx + leftLevel;
            const float right = rightSlope * (tx - 1.0f) + rightLevel;
            emit(x, mix(left, right, fade(tx)));
        }
        leftSlope = rightSlope;
        leftLevel = rightLevel;
    }
}

class NoiseRows : public RowKernel {
public:
    explicit NoiseRows(const NodeRun& run)
        : RowKernel(run.height)
        , width_(run.width)
        , style_(run.integer(Style)) {
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
                octaves_.emplace_back(run, columns, rows, amplitude * toUnit,
                                      hash(seed, static_cast<std::uint32_t>(i), 3));
            sum += amplitude;
            squares += amplitude * amplitude;
        }
        // Octaves are independent: their sum spreads as the root of the squares. The factors leave about one
        // pixel in a thousand to be clamped.
        normalisation_ = style_ == Plain        ? 0.55f / std::sqrt(squares)
                         : style_ == Turbulence ? 1.5f / sum
                                                : 1.0f / sum;
    }

    void computeRows(int, int begin, int end, Image& result) override {
        std::vector<LatticeRows> lattices(octaves_.size());
        std::vector<float> weights(style_ == Ridged ? static_cast<std::size_t>(width_) : 0);
        for (int y = begin; y < end; ++y) {
            float* out = result.row(y);
            std::fill_n(out, width_, 0.0f);
            std::fill(weights.begin(), weights.end(), 1.0f);
            for (std::size_t i = 0; i < octaves_.size(); ++i) {
                const Octave& octave = octaves_[i];
                lattices[i].moveTo(octave, octave.down.cellOf[static_cast<std::size_t>(y)]);
                addOctave(octave, lattices[i], octave.down.places[static_cast<std::size_t>(y)], out,
                          weights.data());
            }
            const float middle = style_ == Plain ? 0.5f : 0.0f;
            for (int x = 0; x < width_; ++x) out[x] = clamp(out[x] * normalisation_ + middle, 0.0f, 1.0f);
        }
    }

private:
    void addOctave(const Octave& octave, const LatticeRows& lattice, float ty, float* out,
                   float* weights) const {
        const float amplitude = octave.amplitude;
        if (style_ == Plain) {
            eachNoise(octave, lattice, ty, [=](int x, float noise) { out[x] += amplitude * noise; });
        } else if (style_ == Turbulence) {
            eachNoise(octave, lattice, ty,
                      [=](int x, float noise) { out[x] += amplitude * absolute(noise); });
        } else {
            addRidges(octave, lattice, ty, out, weights);
        }
    }

    // F. K. Musgrave in "Texturing and Modeling", 1994: detail grows where the octave before is high.
    static void addRidges(const Octave& octave, const LatticeRows& lattice, float ty, float* out,
                          float* weights) {
        const float amplitude = octave.amplitude * 0.70710678f;
        eachNoise(octave, lattice, ty, [=](int x, float noise) {
            const float ridge = 1.0f - absolute(noise) * 1.41421356f;
            const float signal = ridge * ridge * weights[x];
            out[x] += amplitude * signal;
            weights[x] = clamp(2.0f * signal, 0.0f, 1.0f);
        });
    }

    int width_;
    int style_;
    float normalisation_;
    std::vector<Octave> octaves_;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return std::make_unique<NoiseRows>(run);
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind fractalNoiseKind() {
    return {3,
            "fbm",
            "Gradient noise summed over octaves, each of twice the repeats; 0 to 1 around 0.5.",
            {},
            {choice("style", {"fbm", "turbulence", "ridged"}, 0,
                    "plain sum, sum of absolute values (creases), or sharp ridges"),
             number("repeats", ValueType::Integer2, 4, 1, 1024,
                    "lattice cells of the first octave across and down"),
             number("octaves", ValueType::Integer, 6, 1, 12, "number of octaves"),
             number("gain", ValueType::Float, 0.5, 0, 1, "amplitude of an octave relative to the one before"),
             seedParameter()},
            ResultChannels::Gray,
            true,
            60,
            &kernel};
}

} // namespace embedded
