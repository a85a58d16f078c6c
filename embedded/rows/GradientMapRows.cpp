#include "embedded/rows/GradientMapRows.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

constexpr int chunk = 256;

template <int stops>
void findPlaces(const Gradient& gradient, const float* in, int count, float* __restrict places) {
    const SectionPositions positions = gradient.positions;
    const SectionNumbers begins = gradient.begins;
    const SectionNumbers scales = gradient.scales;
    for (int i = 0; i < count; ++i) {
        const float begin = numberAt<stops>(positions, begins, in[i]);
        const float scale = numberAt<stops>(positions, scales, in[i]);
        places[i] = clamp((in[i] - begin) * scale, 0.0f, 1.0f);
    }
}

template <int stops>
void mapChannel(const Gradient& gradient, int channel, const float* in, const float* places, int count,
                float* __restrict out) {
    const SectionPositions positions = gradient.positions;
    const SectionNumbers colours = gradient.colours[channel];
    const SectionNumbers differences = gradient.differences[channel];
    for (int i = 0; i < count; ++i) {
        const float colour = numberAt<stops>(positions, colours, in[i]);
        const float difference = numberAt<stops>(positions, differences, in[i]);
        out[i] = colour + difference * places[i];
    }
}

template <int stops>
void mapStops(const Gradient& gradient, const float* in, int channels, int count, float* const* out) {
    float places[chunk];
    for (int begin = 0; begin < count; begin += chunk) {
        const int length = count - begin < chunk ? count - begin : chunk;
        findPlaces<stops>(gradient, in + begin, length, places);
        if (gradient.eased)
            for (int i = 0; i < length; ++i) places[i] = smooth(places[i]);
        for (int c = 0; c < channels; ++c)
            mapChannel<stops>(gradient, c, in + begin, places, length, out[c] + begin);
    }
}

} // namespace

void gradientMapRow(const Gradient& gradient, const float* in, int channels, int count, float* const* out) {
    switch (gradient.stops) {
    case 2:
        return mapStops<2>(gradient, in, channels, count, out);
    case 3:
        return mapStops<3>(gradient, in, channels, count, out);
    case 4:
        return mapStops<4>(gradient, in, channels, count, out);
    case 5:
        return mapStops<5>(gradient, in, channels, count, out);
    default:
        return mapStops<mostSections>(gradient, in, channels, count, out);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
