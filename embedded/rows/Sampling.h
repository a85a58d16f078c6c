// Reads planes between their pixels, wrapping around the edges: first the places of some pixels, then any
// number of channels at these places.
#pragma once

#include "embedded/rows/Plane.h"

namespace embedded {

constexpr int mostPlaces = 256;

// Offsets of the four pixels around each place, and how far it is from the upper left one.
struct SamplePlaces {
    int upperLeft[mostPlaces];
    int upperRight[mostPlaces];
    int lowerLeft[mostPlaces];
    int lowerRight[mostPlaces];
    float right[mostPlaces];
    float down[mostPlaces];
};

inline namespace KVSUBSTANCE_ARITHMETIC {

// At the distance (dx[i], dy[i]) in pixels from the centre of pixel (x + advance * i, y). Distances beyond a
// million pixels are as good as that: what gets there is noise, and indices stay safe for any number.
inline void findPlaces(const Plane& plane, int x, int y, int advance, const float* dx, const float* dy,
                       int count, SamplePlaces& places) {
    constexpr float farthest = 1048576.0f;
    const int lastX = plane.width - 1;
    const int lastY = plane.height - 1;
    const int stride = plane.stride;
    for (int i = 0; i < count; ++i) {
        const float boundedX = clamp(dx[i], -farthest, farthest);
        const int wholeX = floorToInt(boundedX);
        places.right[i] = boundedX - static_cast<float>(wholeX);
        places.upperLeft[i] = (x + advance * i + wholeX) & lastX;
        places.upperRight[i] = (x + advance * i + wholeX + 1) & lastX;
    }
    for (int i = 0; i < count; ++i) {
        const float boundedY = clamp(dy[i], -farthest, farthest);
        const int wholeY = floorToInt(boundedY);
        places.down[i] = boundedY - static_cast<float>(wholeY);
        const int upper = ((y + wholeY) & lastY) * stride;
        const int lower = ((y + wholeY + 1) & lastY) * stride;
        places.lowerLeft[i] = lower + places.upperLeft[i];
        places.lowerRight[i] = lower + places.upperRight[i];
        places.upperLeft[i] += upper;
        places.upperRight[i] += upper;
    }
}

// Bilinear. The plane is another channel of the image that the places were found for, or one whose rows are
// all the same number.
inline void samplePlaces(const Plane& plane, const SamplePlaces& places, int count, float* __restrict out) {
    const float* const samples = plane.samples;
    if (plane.stride == 0) {
        for (int i = 0; i < count; ++i) out[i] = samples[0];
        return;
    }
    for (int i = 0; i < count; ++i) {
        const float above = mix(samples[places.upperLeft[i]], samples[places.upperRight[i]], places.right[i]);
        const float below = mix(samples[places.lowerLeft[i]], samples[places.lowerRight[i]], places.right[i]);
        out[i] = mix(above, below, places.down[i]);
    }
}

} // namespace KVSUBSTANCE_ARITHMETIC
} // namespace embedded
