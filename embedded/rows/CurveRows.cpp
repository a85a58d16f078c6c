#include "embedded/rows/CurveRows.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

template <int points>
void mapRow(const MonotoneCurve& curve, const float* in, int count, float* __restrict out) {
    const MonotoneCurve c = curve;
    for (int i = 0; i < count; ++i) {
        const float value = in[i];
        const float begin = numberAt<points>(c.positions, c.begins, value);
        const float t = clamp((value - begin) * numberAt<points>(c.positions, c.scales, value), 0.0f, 1.0f);
        float result = numberAt<points>(c.positions, c.coefficients[3], value);
        result = result * t + numberAt<points>(c.positions, c.coefficients[2], value);
        result = result * t + numberAt<points>(c.positions, c.coefficients[1], value);
        out[i] = result * t + numberAt<points>(c.positions, c.coefficients[0], value);
    }
}

} // namespace

void curveRow(const MonotoneCurve& curve, const float* in, int count, float* out) {
    switch (curve.points) {
    case 2:
        return mapRow<2>(curve, in, count, out);
    case 3:
        return mapRow<3>(curve, in, count, out);
    case 4:
        return mapRow<4>(curve, in, count, out);
    case 5:
        return mapRow<5>(curve, in, count, out);
    default:
        return mapRow<mostSections>(curve, in, count, out);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
