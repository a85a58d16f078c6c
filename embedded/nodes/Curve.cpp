#include "embedded/nodes/Curve.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

#include <algorithm>
#include <array>

namespace embedded {
namespace {

enum Parameter { Points, FirstPoint };

constexpr std::size_t mostPoints = 6;
constexpr float smallestDistance = 1e-6f; // points closer than this make a step

// From one point to the next, or behind the last: a cubic of t, which is 0 to 1 over the segment.
struct Segment {
    float position = 0;
    float scale = 0; // one over the distance to the next point; 0 holds the point's value
    std::array<float, 4> coefficients{};

    float of(float value) const {
        const float t = clamp((value - position) * scale, 0.0f, 1.0f);
        return ((coefficients[3] * t + coefficients[2]) * t + coefficients[1]) * t + coefficients[0];
    }
};

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

class Curve {
public:
    explicit Curve(const NodeRun& run)
        : count_(static_cast<std::size_t>(run.integer(Points))) {
        std::array<Point, mostPoints> points;
        for (std::size_t i = 0; i < count_; ++i)
            points[i] = {run.number(FirstPoint + 2 * i), run.number(FirstPoint + 2 * i + 1)};
        std::stable_sort(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(count_),
                         [](const Point& a, const Point& b) { return a.position < b.position; });
        std::array<float, mostPoints> secants{};
        for (std::size_t i = 0; i + 1 < count_; ++i) {
            const float distance = points[i + 1].position - points[i].position;
            segments_[i].scale = distance < smallestDistance ? 0.0f : 1.0f / distance;
            secants[i] = (points[i + 1].value - points[i].value) * segments_[i].scale;
        }
        for (std::size_t i = 0; i < count_; ++i) {
            segments_[i].position = points[i].position;
            segments_[i].coefficients[0] = points[i].value;
            if (segments_[i].scale == 0) continue;
            const float start = i == 0 ? secants[0] : slopeBetween(secants[i - 1], secants[i]);
            const float end = i + 2 == count_ ? secants[i] : slopeBetween(secants[i], secants[i + 1]);
            setHermite(segments_[i], points[i + 1].value, start, end);
        }
    }

    float of(float value) const {
        std::size_t i = 0;
        while (i + 1 < count_ && value >= segments_[i + 1].position) ++i;
        return segments_[i].of(value);
    }

private:
    static void setHermite(Segment& segment, float endValue, float startSlope, float endSlope) {
        const float startValue = segment.coefficients[0];
        const float start = startSlope / segment.scale;
        const float end = endSlope / segment.scale;
        const float rise = endValue - startValue;
        segment.coefficients = {startValue, start, 3.0f * rise - 2.0f * start - end,
                                start + end - 2.0f * rise};
    }

    std::size_t count_;
    std::array<Segment, mostPoints> segments_;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const Image* source = run.sources[0];
    if (run.channels == 1) {
        return makeRowKernel(run, [source, curve = Curve(run)](int y, float* out) {
            const float* in = source->row(y);
            for (int x = 0; x < source->width(); ++x) out[x] = curve.of(in[x]);
        });
    }
    return makeRowKernel(run, [source, curve = Curve(run)](int y, float* out) {
        const float* in = source->row(y);
        for (int x = 0; x < source->width(); ++x, in += 4, out += 4) {
            for (int c = 0; c < 3; ++c) out[c] = curve.of(in[c]);
            out[3] = in[3];
        }
    });
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind curveKind() {
    return {
        20,
        "curve",
        "Maps values by a curve that never swings beyond its points; before the first and behind the last "
        "their values hold. Works on each colour component; alpha stays.",
        {{"source", PortChannels::Any, true}},
        {number("points", ValueType::Integer, 2, 2, static_cast<double>(mostPoints),
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
        true,
        30,
        &kernel};
}

} // namespace embedded
