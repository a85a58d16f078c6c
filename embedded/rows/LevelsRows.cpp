#include "embedded/rows/LevelsRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

// From the place in the input range, 0 to 1, to the output.
template <typename Place>
void mapRow(const LevelsCurve& curve, int count, float* __restrict out, Place place) {
    const float low = curve.outputLow;
    const float high = curve.outputHigh;
    const float exponent = curve.exponent;
    if (exponent == 1.0f) {
        for (int i = 0; i < count; ++i) {
            const float t = place(i);
            out[i] = low * (1.0f - t) + high * t;
        }
    } else {
        for (int i = 0; i < count; ++i) {
            const float t = power(place(i), exponent);
            out[i] = low * (1.0f - t) + high * t;
        }
    }
}

} // namespace

void levelsRow(const LevelsCurve& curve, const float* in, int count, float* out) {
    const float low = curve.inputLow;
    const float scale = curve.scale;
    if (curve.step) {
        mapRow(curve, count, out, [=](int i) { return in[i] >= low ? 1.0f : 0.0f; });
    } else {
        mapRow(curve, count, out, [=](int i) { return clamp((in[i] - low) * scale, 0.0f, 1.0f); });
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
