#include "embedded/nodes/Wave.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/WaveRows.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Layout, Profile, Repeats, Phase };
enum LayoutChoice { Linear, Radial, Angular };

// Sides are powers of two, so the pixels' places are whole parts of a period, and whole periods further the
// same value stands.
std::unique_ptr<RowKernel> prepareLinear(const NodeRun& run) {
    const int longerSide = std::max(run.width, run.height);
    const int across = run.integer(Repeats, 0);
    const int down = run.integer(Repeats, 1);
    const auto partsAcross = static_cast<std::uint32_t>(across * (longerSide / run.width));
    const auto partsDown = static_cast<std::uint32_t>(down * (longerSide / run.height));
    LinearWave wave{};
    wave.profile = static_cast<WaveProfile>(run.integer(Profile));
    wave.step = 2 * partsAcross;
    wave.lastPart = 2 * static_cast<std::uint32_t>(longerSide) - 1;
    wave.phase = run.number(Phase);
    wave.span = static_cast<float>(std::abs(across)) / static_cast<float>(run.width) +
                static_cast<float>(std::abs(down)) / static_cast<float>(run.height);
    return makeRowKernel([wave, partsAcross, partsDown, row = linearWaveRow.chosen()](
                             const Segment& segment, const SourceRow*, float* const* result) {
        LinearWave segmentWave = wave;
        segmentWave.start = (2 * static_cast<std::uint32_t>(segment.x) + 1) * partsAcross +
                            (2 * static_cast<std::uint32_t>(segment.y) + 1) * partsDown;
        row(segmentWave, segment.count, result[0]);
    });
}

std::unique_ptr<RowKernel> prepareCentred(const NodeRun& run) {
    const bool isRadial = run.integer(Layout) == Radial;
    const float pixel = 2.0f / static_cast<float>(run.shorterSide());
    const CentredWave wave = {static_cast<WaveProfile>(run.integer(Profile)),
                              static_cast<float>(run.integer(Repeats, isRadial ? 0 : 1)),
                              static_cast<float>(isRadial ? 0 : run.integer(Repeats, 0)),
                              run.number(Phase),
                              pixel,
                              0.0f};
    std::vector<float> x;
    x.reserve(static_cast<std::size_t>(run.width));
    for (int i = 0; i < run.width; ++i)
        x.push_back((static_cast<float>(i) + 0.5f - 0.5f * static_cast<float>(run.width)) * pixel);
    return makeRowKernel(
        [wave, x, middle = 0.5f * static_cast<float>(run.height),
         row = centredWaveRow.chosen()](const Segment& segment, const SourceRow*, float* const* result) {
            CentredWave rowWave = wave;
            rowWave.y = (static_cast<float>(segment.y) + 0.5f - middle) * wave.pixel;
            row(rowWave, x.data() + segment.x, segment.count, result[0]);
        });
}

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return run.integer(Layout) == Linear ? prepareLinear(run) : prepareCentred(run);
}

// Rings and sectors meet those of the next copy with a crease or a jump.
const char* breaksPeriod(const KnownParameters& parameters) {
    const std::optional<Value>& layout = parameters[Layout];
    return layout && layout->integers[0] == Linear ? nullptr : "layout";
}

const NodeKernel kernel{prepare, nullptr};

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
                    "straight waves, which tile, rings around the centre, or sectors around it"),
             choice("profile", {"sine", "triangle", "square", "sawtooth"}, 0, "the course of a period"),
             repeats, number("phase", ValueType::Float, 0, -1, 1, "shift in periods")},
            ResultChannels::Gray,
            nullptr,
            breaksPeriod,
            70,
            &kernel};
}

} // namespace embedded
