#include "embedded/nodes/Wave.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

namespace embedded {
namespace {

enum Parameter { Layout, Profile, Repeats, Phase };
enum LayoutChoice { Linear, Radial, Angular };
enum ProfileChoice { Sine, Triangle, Square, Sawtooth };

// Periods from 0 to 1. The step is how much of a period a pixel spans: jumps are as wide as a pixel.
template <int profile>
float profileAt(float t, float step) {
    if (profile == Sine) return 0.5f - 0.5f * cosineOfTurns(t);
    const float triangle = 1.0f - absolute(2.0f * t - 1.0f);
    if (profile == Triangle) return triangle;
    const float span = clamp(step, 1e-6f, 1.0f);
    if (profile == Square) return clamp((triangle - 0.5f) / (2.0f * span) + 0.5f, 0.0f, 1.0f);
    // The mean of the sawtooth over the span.
    const float fromJump = t < 0.5f ? t : t - 1.0f;
    if (2.0f * absolute(fromJump) >= span) return t;
    return fromJump + 0.5f - fromJump / span;
}

struct Waves {
    explicit Waves(const NodeRun& run)
        : width(run.width)
        , height(run.height)
        , layout(run.integer(Layout))
        , across(run.integer(Repeats, 0))
        , down(run.integer(Repeats, 1))
        , phase(run.number(Phase))
        , pixel(2.0f / static_cast<float>(run.shorterSide())) {}

    template <int profile>
    void computeRow(int y, float* out) const {
        if (layout == Linear)
            computeLinearRow<profile>(y, out);
        else
            computeCentredRow<profile>(y, out);
    }

    // Sides are powers of two, so the places are exact and whole periods further the same value stands.
    template <int profile>
    void computeLinearRow(int y, float* out) const {
        const double perColumn = static_cast<double>(across) / width;
        const double perRow = static_cast<double>(down) / height;
        const auto step =
            static_cast<float>((across < 0 ? -perColumn : perColumn) + (down < 0 ? -perRow : perRow));
        const double start = (y + 0.5) * perRow;
        for (int x = 0; x < width; ++x) {
            const double position = (x + 0.5) * perColumn + start;
            const double part = position - static_cast<int>(position); // -1 to 1
            const auto place = static_cast<float>(part < 0 ? part + 1 : part);
            out[x] = profileAt<profile>(partOfPeriod(place), step);
        }
    }

    // Distances are 1 at the nearer edges.
    template <int profile>
    void computeCentredRow(int y, float* out) const {
        const auto rings = static_cast<float>(layout == Radial ? across : down);
        const auto sectors = static_cast<float>(layout == Radial ? 0 : across);
        const float dy = (static_cast<float>(y) + 0.5f - 0.5f * static_cast<float>(height)) * pixel;
        for (int x = 0; x < width; ++x) {
            const float dx = (static_cast<float>(x) + 0.5f - 0.5f * static_cast<float>(width)) * pixel;
            const float distance = std::sqrt(dx * dx + dy * dy);
            const float turns = sectors == 0 ? 0.0f : sectors * turnsTo(dx, dy);
            const float arc = 6.2831853f * clamp(distance, pixel, distance + pixel);
            const float step = pixel * (absolute(rings) + absolute(sectors) / arc);
            out[x] = profileAt<profile>(partOfPeriod(rings * distance + turns), step);
        }
    }

    float partOfPeriod(float position) const {
        const float shifted = position - phase;
        return shifted - static_cast<float>(floorToInt(shifted));
    }

    int width;
    int height;
    int layout;
    int across;
    int down;
    float phase;
    float pixel; // in the unit of the centred layouts
};

template <int profile>
std::unique_ptr<RowKernel> prepareProfile(const NodeRun& run) {
    return makeRowKernel(run, [waves = Waves(run)](int y, float* out) { waves.computeRow<profile>(y, out); });
}

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    switch (run.integer(Profile)) {
    case Sine:
        return prepareProfile<Sine>(run);
    case Triangle:
        return prepareProfile<Triangle>(run);
    case Square:
        return prepareProfile<Square>(run);
    default:
        return prepareProfile<Sawtooth>(run);
    }
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind waveKind() {
    ParameterInfo repeats =
        number("repeats", ValueType::Integer2, 0, -512, 512,
               "linear: periods across and down, which together give the direction; radial: the first is the "
               "rings from the centre to the nearer edge; angular: sectors, and turns by which they wind "
               "into spirals up to there");
    repeats.defaultValue = {4, 0, 0, 0};
    return {15,
            "wave",
            "Waves from 0 to 1 and back; each period begins at 0.",
            {},
            {choice("layout", {"linear", "radial", "angular"}, 0,
                    "straight waves, rings around the centre, or sectors around it"),
             choice("profile", {"sine", "triangle", "square", "sawtooth"}, 0, "the course of a period"),
             repeats, number("phase", ValueType::Float, 0, -1, 1, "shift in periods")},
            ResultChannels::Gray,
            false, // the linear layout tiles, but the centred ones meet their copies with a crease or a jump
            40,
            &kernel};
}

} // namespace embedded
