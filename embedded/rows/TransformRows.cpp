#include "embedded/rows/TransformRows.h"

#include "embedded/rows/Sampling.h"

namespace embedded::KVSUBSTANCE_ROWS {

void sampleLineRow(const Plane* source, int channels, const SampleLine& line, int count, float* const* out) {
    const SampleLine l = line;
    float x[mostPlaces];
    float y[mostPlaces];
    SamplePlaces places;
    for (int begin = 0; begin < count; begin += mostPlaces) {
        const int length = count - begin < mostPlaces ? count - begin : mostPlaces;
        for (int i = 0; i < length; ++i) {
            const float u = (static_cast<float>(begin + i) + 0.5f) * l.step - 0.5f - l.offset;
            x[i] = (l.xByU * u + l.xByV + l.xOffset) * l.sourceWidth - 0.5f;
            y[i] = (l.yByU * u + l.yByV + l.yOffset) * l.sourceHeight - 0.5f;
        }
        findPlaces(source[0], 0, 0, 0, x, y, length, places);
        for (int c = 0; c < channels; ++c) samplePlaces(source[c], places, length, out[c] + begin);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
