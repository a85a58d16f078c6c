#include "embedded/rows/GrayFromColourRows.h"

namespace embedded::KVSUBSTANCE_ROWS {

void weighComponents(const float* const* colour, const float* weights, int count, float* __restrict out) {
    const float* const red = colour[0];
    const float* const green = colour[1];
    const float* const blue = colour[2];
    const float w[3] = {weights[0], weights[1], weights[2]};
    for (int i = 0; i < count; ++i) out[i] = red[i] * w[0] + green[i] * w[1] + blue[i] * w[2];
}

void weighExtremes(const float* const* colour, float largestWeight, float smallestWeight, int count,
                   float* __restrict out) {
    const float* const red = colour[0];
    const float* const green = colour[1];
    const float* const blue = colour[2];
    for (int i = 0; i < count; ++i) {
        const float warm = red[i] > green[i] ? red[i] : green[i];
        const float cold = red[i] < green[i] ? red[i] : green[i];
        const float largest = warm > blue[i] ? warm : blue[i];
        const float smallest = cold < blue[i] ? cold : blue[i];
        out[i] = largest * largestWeight + smallest * smallestWeight;
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
