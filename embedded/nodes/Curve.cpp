#include "embedded/nodes/Curve.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/Arithmetic.h"
#include "embedded/rows/CurveRows.h"

#include <algorithm>
#include <array>

namespace embedded {
namespace {

enum Parameter { Points, FirstPoint };

constexpr float smallestDistance = 1e-6f; // points closer than this make a step

struct Point {
    float position = 0;
    float value = 0;
};

// F. N. Fritsch and R. E. Carlson, "Monotone Piecewise Cubic Interpolation", 1980, with the square as region
// of monotone slopes: each at most three times the secants beside it, none where the direction turns.
float slopeBetween(float before, float behind) {
    if (!(before * behind > 0)) return 0.0f;
    const float mean = 0.5f * (before + behind);
    const float limit = 3.0f * (absolute(before) < absolute(behind) ? before : behind);
    return absolute(mean) < absolute(limit) ? mean : limit;
}

std::vector<Point> sortedPoints(const NodeRun& run) {
    std::vector<Point> points(static_cast<std::size_t>(run.integer(Points)));
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = {run.number(FirstPoint + 2 * i), run.number(FirstPoint + 2 * i + 1)};
    std::stable_sort(points.begin(), points.end(),
                     [](const Point& a, const Point& b) { return a.position < b.position; });
    return points;
}

// The cubic from 0 to 1 with these values and slopes at its ends.
std::array<float, 4> hermite(float startValue, float endValue, float startSlope, float endSlope) {
    const float rise = endValue - startValue;
    return {startValue, startSlope, 3.0f * rise - 2.0f * startSlope - endSlope,
            startSlope + endSlope - 2.0f * rise};
}

MonotoneCurve curveOf(const NodeRun& run) {
    const std::vector<Point> points = sortedPoints(run);
    SectionPositions positions{};
    float scales[mostSections] = {};
    float secants[mostSections] = {};
    float coefficients[4][mostSections] = {};
    for (std::size_t i = 0; i < points.size(); ++i) {
        positions.begin[i] = points[i].position;
        coefficients[0][i] = points[i].value;
        if (i + 1 == points.size()) continue;
        const float distance = points[i + 1].position - points[i].position;
        scales[i] = distance < smallestDistance ? 0.0f : 1.0f / distance;
        secants[i] = (points[i + 1].value - points[i].value) * scales[i];
    }
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        if (scales[i] == 0) continue;
        const float start = i == 0 ? secants[0] : slopeBetween(secants[i - 1], secants[i]);
        const float end = i + 2 == points.size() ? secants[i] : slopeBetween(secants[i], secants[i + 1]);
        const auto cubic = hermite(points[i].value, points[i + 1].value, start / scales[i], end / scales[i]);
        for (std::size_t power = 0; power < 4; ++power) coefficients[power][i] = cubic[power];
    }
    const auto count = static_cast<int>(points.size());
    MonotoneCurve curve{
        count, positions, sectionNumbers(positions.begin, count), sectionNumbers(scales, count), {}};
    for (std::size_t power = 0; power < 4; ++power)
        curve.coefficients[power] = sectionNumbers(coefficients[power], count);
    return curve;
}

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel([curve = curveOf(run), channels = run.channels, row = curveRow.chosen()](
                             const Segment& segment, const SourceRow* sources, float* const* result) {
        for (int c = 0; c < channels; ++c) {
            const float* const in = sources[0].channels[c];
            if (c < 3)
                row(curve, in, segment.count, result[c]);
            else
                std::copy_n(in, segment.count, result[c]);
        }
    });
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind curveKind() {
    return {
        20,
        "curve",
        "Maps values by a curve that never swings beyond its points; before the first and behind the last "
        "their values hold. Works on each colour component; alpha stays.",
        {{"source", PortChannels::Any, true, 0}},
        {number("points", ValueType::Integer, 2, 2, mostSections,
                "number of points used; they may stand in any order, two in one place make a step"),
         number("position1", ValueType::Float, 0, -16, 16, "source value of the first point"),
         number("value1", ValueType::Float, 0, -16, 16, "result at the first point"),
         number("position2", ValueType::Float, 1, -16, 16, "source value of the second point"),
         number("value2", ValueType::Float, 1, -16, 16, "result at the second point"),
         number("position3", ValueType::Float, 1, -16, 16, "source value of the third point"),
         number("value3", ValueType::Float, 1, -16, 16, "result at the third point"),
         number("position4", ValueType::Float, 1, -16, 16, "source value of the fourth point"),
         number("value4", ValueType::Float, 1, -16, 16, "result at the fourth point"),
         number("position5", ValueType::Float, 1, -16, 16, "source value of the fifth point"),
         number("value5", ValueType::Float, 1, -16, 16, "result at the fifth point"),
         number("position6", ValueType::Float, 1, -16, 16, "source value of the sixth point"),
         number("value6", ValueType::Float, 1, -16, 16, "result at the sixth point")},
        ResultChannels::Widest,
        nullptr,
        nullptr,
        120,
        &kernel};
}

} // namespace embedded
