#include "embedded/rows/ResampleRows.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

// Half a pixel ahead, the pixels from one to the next have the same four around them; the first and the last
// of them are halves. For factors that make vectors.
void splineCells(const float* in, int factor, const float* weights, int count, float* __restrict out) {
    const float* const wa = weights;
    const float* const wb = weights + factor;
    const float* const wc = weights + 2 * factor;
    const float* const wd = weights + 3 * factor;
    const int half = factor / 2;
    for (int cell = 0; cell <= count; ++cell) {
        const float a = in[cell];
        const float b = in[cell + 1];
        const float c = in[cell + 2];
        const float d = in[cell + 3];
        const int begin = cell == 0 ? half : 0;
        const int end = cell == count ? half : factor;
        const int first = cell * factor - half;
        for (int i = begin; i < end; ++i) out[first + i] = wa[i] * a + wb[i] * b + wc[i] * c + wd[i] * d;
    }
}

// For small factors: all pixels of a kind at once.
template <int factor>
void splinePhases(const float* in, const float* weights, int count, float* __restrict out) {
    float w[factor][4];
    for (int phase = 0; phase < factor; ++phase)
        for (int k = 0; k < 4; ++k) w[phase][k] = weights[k * factor + (phase + factor / 2) % factor];
    for (int i = 0; i < count; ++i) {
        for (int phase = 0; phase < factor / 2; ++phase)
            out[factor * i + phase] = w[phase][0] * in[i] + w[phase][1] * in[i + 1] +
                                      w[phase][2] * in[i + 2] + w[phase][3] * in[i + 3];
        for (int phase = factor / 2; phase < factor; ++phase)
            out[factor * i + phase] = w[phase][0] * in[i + 1] + w[phase][1] * in[i + 2] +
                                      w[phase][2] * in[i + 3] + w[phase][3] * in[i + 4];
    }
}

} // namespace

void halveRow(const float* in, int count, float* __restrict out) {
    for (int i = 0; i < count; ++i) out[i] = 0.5f * (in[2 * i] + in[2 * i + 1]);
}

void interpolateRow(const float* in, const int* left, const float* t, int count, float* __restrict out) {
    for (int i = 0; i < count; ++i) out[i] = (1.0f - t[i]) * in[left[i]] + t[i] * in[left[i] + 1];
}

void splineRow(const float* in, int shift, const float* weights, int count, float* out) {
    if (shift == 1) return splinePhases<2>(in, weights, count, out);
    if (shift == 2) return splinePhases<4>(in, weights, count, out);
    splineCells(in, 1 << shift, weights, count, out);
}

} // namespace embedded::KVSUBSTANCE_ROWS
