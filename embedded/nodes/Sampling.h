// Reads images between their pixels, wrapping around the edges.
#pragma once

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/Image.h"

namespace embedded {

// Bilinear, at the distance (dx, dy) in pixels from the centre of pixel (x, y). Sides are powers of two.
// Distances beyond a million pixels are as good as that: what gets there is noise, and indices stay safe for
// any number.
template <int channels>
void sampleWrapped(const Image& image, int x, int y, float dx, float dy, float* out) {
    constexpr float farthest = 1048576.0f;
    const float boundedX = clamp(dx, -farthest, farthest);
    const float boundedY = clamp(dy, -farthest, farthest);
    const int wholeX = floorToInt(boundedX);
    const int wholeY = floorToInt(boundedY);
    const float tx = boundedX - static_cast<float>(wholeX);
    const float ty = boundedY - static_cast<float>(wholeY);
    const int left = x + wholeX;
    const int top = y + wholeY;
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
