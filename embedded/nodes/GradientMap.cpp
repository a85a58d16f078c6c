#include "embedded/nodes/GradientMap.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/Colours.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

#include <algorithm>
#include <array>

namespace embedded {
namespace {

enum Parameter { Stops, Encoding, Interpolation, FirstStop };
enum InterpolationChoice { Linear, Smooth, Steps };

struct Stop {
    float position = 0;
    float scale =
        0; // one over the distance to the next stop; 0 for steps, stops in one place and the last stop
    std::array<float, 4> colour{};
    std::array<float, 4> difference{}; // to the next stop's colour
};

std::vector<Stop> stopsOf(const NodeRun& run) {
    std::vector<Stop> stops(static_cast<std::size_t>(run.integer(Stops)));
    for (std::size_t i = 0; i < stops.size(); ++i) {
        stops[i].position = run.number(FirstStop + 2 * i);
        stops[i].colour = linearColour(run.parameters[FirstStop + 2 * i + 1], run.integer(Encoding));
    }
    std::stable_sort(stops.begin(), stops.end(),
                     [](const Stop& a, const Stop& b) { return a.position < b.position; });
    for (std::size_t i = 0; i + 1 < stops.size(); ++i) {
        const float distance = stops[i + 1].position - stops[i].position;
        if (distance > 0 && run.integer(Interpolation) != Steps) stops[i].scale = 1.0f / distance;
        for (std::size_t c = 0; c < 4; ++c)
            stops[i].difference[c] = stops[i + 1].colour[c] - stops[i].colour[c];
    }
    return stops;
}

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const bool eased = run.integer(Interpolation) == Smooth;
    return makeRowKernel(run, [source = run.sources[0], stops = stopsOf(run), eased](int y, float* out) {
        const float* in = source->row(y);
        for (int x = 0; x < source->width(); ++x, out += 4) {
            std::size_t i = 0;
            while (i + 1 < stops.size() && in[x] >= stops[i + 1].position) ++i;
            const Stop& stop = stops[i];
            float t = clamp((in[x] - stop.position) * stop.scale, 0.0f, 1.0f);
            if (eased) t = smooth(t);
            for (std::size_t c = 0; c < 4; ++c) out[c] = stop.colour[c] + stop.difference[c] * t;
        }
    });
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind gradientMapKind() {
    return {
        8,
        "gradientMap",
        "Colours gray values by a gradient; beyond the first and last stop their colours hold.",
        {{"source", PortChannels::Gray, true}},
        {number("stops", ValueType::Integer, 2, 2, 6, "number of stops used; they may stand in any order"),
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
        true,
        25,
        &kernel};
}

} // namespace embedded
