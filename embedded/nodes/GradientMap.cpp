#include "embedded/nodes/GradientMap.h"

#include "embedded/nodes/Colours.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/GradientMapRows.h"

#include <algorithm>
#include <array>

namespace embedded {
namespace {

enum Parameter { Stops, Encoding, Interpolation, FirstStop };
enum InterpolationChoice { Linear, Smooth, Steps };

struct Stop {
    float position = 0;
    std::array<float, 4> colour{};
};

std::vector<Stop> sortedStops(const NodeRun& run) {
    std::vector<Stop> stops(static_cast<std::size_t>(run.integer(Stops)));
    for (std::size_t i = 0; i < stops.size(); ++i) {
        stops[i].position = run.number(FirstStop + 2 * i);
        stops[i].colour = linearColour(run.parameters[FirstStop + 2 * i + 1], run.integer(Encoding));
    }
    std::stable_sort(stops.begin(), stops.end(),
                     [](const Stop& a, const Stop& b) { return a.position < b.position; });
    return stops;
}

Gradient gradientOf(const NodeRun& run) {
    const std::vector<Stop> stops = sortedStops(run);
    const auto count = static_cast<int>(stops.size());
    SectionPositions positions{};
    float scales[mostSections] = {};
    float colours[4][mostSections] = {};
    float differences[4][mostSections] = {};
    for (std::size_t i = 0; i < stops.size(); ++i) {
        const Stop& next = stops[std::min(i + 1, stops.size() - 1)];
        const float distance = next.position - stops[i].position;
        const bool holds = !(distance > 0) || run.integer(Interpolation) == Steps;
        positions.begin[i] = stops[i].position;
        scales[i] = holds ? 0.0f : 1.0f / distance;
        for (std::size_t c = 0; c < 4; ++c) {
            colours[c][i] = stops[i].colour[c];
            differences[c][i] = next.colour[c] - stops[i].colour[c];
        }
    }
    Gradient gradient{count,
                      run.integer(Interpolation) == Smooth,
                      positions,
                      sectionNumbers(positions.begin, count),
                      sectionNumbers(scales, count),
                      {},
                      {}};
    for (std::size_t c = 0; c < 4; ++c) {
        gradient.colours[c] = sectionNumbers(colours[c], count);
        gradient.differences[c] = sectionNumbers(differences[c], count);
    }
    return gradient;
}

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel([gradient = gradientOf(run), channels = run.channels, row = gradientMapRow.chosen()](
                             const Segment& segment, const SourceRow* sources, float* const* result) {
        row(gradient, sources[0].channels[0], channels, segment.count, result);
    });
}

bool hasAlpha(const std::vector<Value>& parameters, const std::vector<int>&) {
    const auto stops = static_cast<std::size_t>(parameters[Stops].integers[0]);
    for (std::size_t i = 0; i < stops; ++i)
        if (parameters[FirstStop + 2 * i + 1].floats[3] != 1.0f) return true;
    return false;
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind gradientMapKind() {
    return {8,
            "gradientMap",
            "Colours gray values by a gradient; beyond the first and last stop their colours hold.",
            {{"source", PortChannels::Gray, true, 0}},
            {number("stops", ValueType::Integer, 2, 2, mostSections,
                    "number of stops used; they may stand in any order"),
             encodingParameter(),
             choice("interpolation", {"linear", "smooth", "steps"}, 0,
                    "between stops: straight, eased, or the lower stop's colour"),
             number("position1", ValueType::Float, 0, -16, 16, "gray value of the first stop"),
             colour("colour1", {0, 0, 0, 1}, "colour of the first stop"),
             number("position2", ValueType::Float, 1, -16, 16, "gray value of the second stop"),
             colour("colour2", {1, 1, 1, 1}, "colour of the second stop"),
             number("position3", ValueType::Float, 1, -16, 16, "gray value of the third stop"),
             colour("colour3", {1, 1, 1, 1}, "colour of the third stop"),
             number("position4", ValueType::Float, 1, -16, 16, "gray value of the fourth stop"),
             colour("colour4", {1, 1, 1, 1}, "colour of the fourth stop"),
             number("position5", ValueType::Float, 1, -16, 16, "gray value of the fifth stop"),
             colour("colour5", {1, 1, 1, 1}, "colour of the fifth stop"),
             number("position6", ValueType::Float, 1, -16, 16, "gray value of the sixth stop"),
             colour("colour6", {1, 1, 1, 1}, "colour of the sixth stop")},
            ResultChannels::Colour,
            hasAlpha,
            nullptr,
            80,
            &kernel};
}

} // namespace embedded
