#include "embedded/rows/FractalNoiseRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

// At a given height in a lattice row, the influence of each lattice column is a linear function of the
// horizontal distance to it: slope times distance plus level.
void mixCorners(const NoiseOctave& octave, const NoiseCells& cells, float* __restrict slopes,
                float* __restrict levels) {
    const float* const upperX = octave.upperX + cells.begin;
    const float* const upperY = octave.upperY + cells.begin;
    const float* const lowerX = octave.lowerX + cells.begin;
    const float* const lowerY = octave.lowerY + cells.begin;
    const float ty = octave.place;
    const float v = fade(ty);
    const float scale = octave.scale;
    const int count = cells.end - cells.begin + 1;
    for (int i = 0; i < count; ++i) {
        slopes[i] = mix(upperX[i], lowerX[i], v) * scale;
        levels[i] = mix(upperY[i] * ty, lowerY[i] * (ty - 1.0f), v) * scale;
    }
}

// Calls emit(i, noise) for the pixels of the segment. A pixel mixes the influences of its two columns; sorted
// by the place in the cell, that is four numbers for the whole cell.
template <typename Emit>
inline void eachNoise(const NoiseOctave& octave, const NoiseCells& cells, const float* slopes,
                      const float* levels, int x, int count, Emit emit) {
    const float* const places = octave.places + x;
    const float* const fades = octave.fades + x;
    int i = 0;
    for (int cell = 0; i < count; ++cell) {
        const float level = levels[cell];
        const float slope = slopes[cell];
        const float slopeChange = slopes[cell + 1] - slope;
        const float levelChange = levels[cell + 1] - slopes[cell + 1] - level;
        const int next = octave.firstPixels[cells.begin + cell + 1] - x;
        const int end = next < count ? next : count;
        for (; i < end; ++i)
            emit(i, (level + slope * places[i]) + fades[i] * (levelChange + slopeChange * places[i]));
    }
}

// F. K. Musgrave in "Texturing and Modeling", 1994: detail grows where the octave before is high.
inline void addRidge(float noise, float amplitude, float& weight, float& sum) {
    const float ridge = 1.0f - absolute(noise);
    const float signal = ridge * ridge * weight;
    sum += amplitude * signal;
    weight = clamp(2.0f * signal, 0.0f, 1.0f);
}

} // namespace

void gradientRow(uint32_t seed, int row, int columns, int first, int count, float* x, float* y) {
    float* __restrict const outX = x;
    float* __restrict const outY = y;
    for (int i = 0; i < count; ++i) {
        int column = first + i;
        column = column >= columns ? column - columns : column;
        column = column >= columns ? column - columns : column; // where there is one column only
        const float turns =
            unitFloat(hash(static_cast<uint32_t>(column), static_cast<uint32_t>(row), seed).x);
        outX[i] = cosineOfTurns(turns);
        outY[i] = sineOfTurns(turns);
    }
}

void fractalNoiseRow(const NoiseSum& sum, const NoiseOctave* octaves, const NoiseCells* cells,
                     int octaveCount, int x, int count, float* corners, float* weights, float* out) {
    float* __restrict const total = out;
    float* __restrict const weight = weights;
    for (int i = 0; i < count; ++i) total[i] = 0.0f;
    if (sum.style == NoiseStyle::Ridged)
        for (int i = 0; i < count; ++i) weight[i] = 1.0f;

    for (int k = 0; k < octaveCount; ++k) {
        const NoiseOctave& octave = octaves[k];
        const float* const slopes = corners;
        float* const levels = corners + (cells[k].end - cells[k].begin + 1);
        mixCorners(octave, cells[k], corners, levels);
        if (sum.style == NoiseStyle::Plain)
            eachNoise(octave, cells[k], slopes, levels, x, count,
                      [=](int i, float noise) { total[i] += noise; });
        else if (sum.style == NoiseStyle::Turbulence)
            eachNoise(octave, cells[k], slopes, levels, x, count,
                      [=](int i, float noise) { total[i] += absolute(noise); });
        else
            eachNoise(octave, cells[k], slopes, levels, x, count,
                      [=, amplitude = octave.amplitude](int i, float noise) {
                          addRidge(noise, amplitude, weight[i], total[i]);
                      });
    }

    const float factor = sum.factor;
    const float middle = sum.middle;
    for (int i = 0; i < count; ++i) total[i] = clamp(total[i] * factor + middle, 0.0f, 1.0f);
}

} // namespace embedded::KVSUBSTANCE_ROWS
