// Reads images between their pixels, wrapping around the edges.
#pragma once

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/Image.h"

namespace embedded {

// Bilinear, at a place in pixels ((0, 0) is the centre of the first pixel). Sides are powers of two. Places
// beyond a million pixels are as good as that: what gets there is noise, and indices stay safe for any
// number.
template <int channels>
void sampleWrapped(const Image& image, float x, float y, float* out) {
    constexpr float farthest = 1048576.0f;
    const float boundedX = clamp(x, -farthest, farthest);
    const float boundedY = clamp(y, -farthest, farthest);
    const int left = floorToInt(boundedX);
    const int top = floorToInt(boundedY);
    const float tx = boundedX - static_cast<float>(left);
    const float ty = boundedY - static_cast<float>(top);
    const int x0 = left & (image.width() - 1);
    const int x1 = (left + 1) & (image.width() - 1);
    const float* upper = image.row(top & (image.height() - 1));
    const float* lower = image.row((top + 1) & (image.height() - 1));
    for (int c = 0; c < channels; ++c) {
        const float above = mix(upper[x0 * channels + c], upper[x1 * channels + c], tx);
        const float below = mix(lower[x0 * channels + c], lower[x1 * channels + c], tx);
        out[c] = mix(above, below, ty);
    }
}

} // namespace embedded
