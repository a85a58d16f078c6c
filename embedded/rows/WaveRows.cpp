#include "embedded/rows/WaveRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

// How much of a period a pixel covers: jumps are as wide as that.
inline float spanOf(float pixelSpan) {
    return clamp(pixelSpan, 1e-6f, 1.0f);
}

// Periods from 0 to 1.
template <WaveProfile profile>
inline float profileAt(float t, float span) {
    if (profile == WaveProfile::Sine) return 0.5f - 0.5f * cosineOfTurns(t);
    const float triangle = 1.0f - absolute(2.0f * t - 1.0f);
    if (profile == WaveProfile::Triangle) return triangle;
    if (profile == WaveProfile::Square) return clamp((triangle - 0.5f) / (2.0f * span) + 0.5f, 0.0f, 1.0f);
    // The mean of the sawtooth over the span, which falls around the jump.
    const float fromJump = t < 0.5f ? t : t - 1.0f;
    return fromJump + 0.5f - clamp(fromJump / span, -0.5f, 0.5f);
}

inline float partOfPeriod(float position, float phase) {
    const float shifted = position - phase;
    return shifted - static_cast<float>(floorToInt(shifted));
}

template <WaveProfile profile>
void linearRow(const LinearWave& wave, int count, float* __restrict out) {
    const uint32_t start = wave.start;
    const uint32_t step = wave.step;
    const uint32_t lastPart = wave.lastPart;
    const float period = 1.0f / static_cast<float>(static_cast<int>(lastPart + 1));
    const float phase = wave.phase;
    const float span = spanOf(wave.span);
    for (int i = 0; i < count; ++i) {
        const uint32_t part = (start + step * static_cast<uint32_t>(i)) & lastPart;
        const float place = static_cast<float>(static_cast<int>(part)) * period;
        out[i] = profileAt<profile>(partOfPeriod(place, phase), span);
    }
}

template <WaveProfile profile>
void centredRow(const CentredWave& wave, const float* x, int count, float* __restrict out) {
    const float rings = wave.rings;
    const float sectors = wave.sectors;
    const float ringSize = absolute(rings);
    const float sectorSize = absolute(sectors);
    const float phase = wave.phase;
    const float pixel = wave.pixel;
    const float dy = wave.y;
    if (sectors == 0) {
        const float span = spanOf(pixel * ringSize);
        for (int i = 0; i < count; ++i) {
            const float distance = squareRoot(x[i] * x[i] + dy * dy);
            out[i] = profileAt<profile>(partOfPeriod(rings * distance, phase), span);
        }
    } else {
        for (int i = 0; i < count; ++i) {
            const float distance = squareRoot(x[i] * x[i] + dy * dy);
            const float arc = 6.2831853f * (distance > pixel ? distance : pixel);
            const float position = rings * distance + sectors * turnsTo(x[i], dy);
            out[i] = profileAt<profile>(partOfPeriod(position, phase),
                                        spanOf(pixel * (ringSize + sectorSize / arc)));
        }
    }
}

} // namespace

void linearWaveRow(const LinearWave& wave, int count, float* out) {
    switch (wave.profile) {
    case WaveProfile::Sine:
        return linearRow<WaveProfile::Sine>(wave, count, out);
    case WaveProfile::Triangle:
        return linearRow<WaveProfile::Triangle>(wave, count, out);
    case WaveProfile::Square:
        return linearRow<WaveProfile::Square>(wave, count, out);
    case WaveProfile::Sawtooth:
        return linearRow<WaveProfile::Sawtooth>(wave, count, out);
    }
}

void centredWaveRow(const CentredWave& wave, const float* x, int count, float* out) {
    switch (wave.profile) {
    case WaveProfile::Sine:
        return centredRow<WaveProfile::Sine>(wave, x, count, out);
    case WaveProfile::Triangle:
        return centredRow<WaveProfile::Triangle>(wave, x, count, out);
    case WaveProfile::Square:
        return centredRow<WaveProfile::Square>(wave, x, count, out);
    case WaveProfile::Sawtooth:
        return centredRow<WaveProfile::Sawtooth>(wave, x, count, out);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
