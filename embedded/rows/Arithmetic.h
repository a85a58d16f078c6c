// Arithmetic of the kernels, from + - * / and square roots alone, so that every machine gives the same bits.
// Sources that use it are compiled without contraction to fused operations. The inline namespace keeps the
// versions for different instruction sets apart (see RowFunction.h).
#pragma once

#include <math.h>
#include <stdint.h>
#include <string.h>

#if !defined(KVSUBSTANCE_ARITHMETIC)
#define KVSUBSTANCE_ARITHMETIC arithmetic_plain
#endif

namespace embedded {
inline namespace KVSUBSTANCE_ARITHMETIC {

// NaN gives low.
inline float clamp(float value, float low, float high) {
    const float bounded = value > low ? value : low;
    return bounded < high ? bounded : high;
}

inline float mix(float a, float b, float t) {
    return a + (b - a) * t;
}

// Values of a size up to 2^30.
inline int floorToInt(float value) {
    const int truncated = static_cast<int>(value);
    return truncated - (static_cast<float>(truncated) > value ? 1 : 0);
}

inline int roundToInt(float value) {
    return floorToInt(value + 0.5f);
}

inline float squareRoot(float value) {
    return sqrtf(value);
}

inline float absolute(float value) {
    return fabsf(value);
}

// 0 to 1 with no slope at both ends.
inline float smooth(float t) {
    return t * t * (3.0f - 2.0f * t);
}

// Perlin's quintic: no slope and no curvature at both ends.
inline float fade(float t) {
    return t * t * t * (t * (t * 6.0f - 15.0f) + 10.0f);
}

// Relative error below 4e-7 for exponents from -126 to 127; beyond them the ends' results.
inline float exp2Of(float x) {
    const float bounded = clamp(x, -126.0f, 127.0f);
    const int whole = roundToInt(bounded);
    const float t = (bounded - static_cast<float>(whole)) * 0.69314718056f;
    const float power =
        1.0f +
        t * (1.0f + t * (1.0f / 2 + t * (1.0f / 6 + t * (1.0f / 24 + t * (1.0f / 120 + t * (1.0f / 720))))));
    const uint32_t bits = static_cast<uint32_t>(whole + 127) << 23;
    float scale;
    memcpy(&scale, &bits, sizeof scale);
    return power * scale;
}

// For normal numbers above 0.
inline float log2Of(float x) {
    uint32_t bits;
    memcpy(&bits, &x, sizeof bits);
    constexpr uint32_t rootOfHalf = 0x3f3504f3u; // the mantissa is taken from sqrt(1/2) to sqrt(2)
    const uint32_t shifted = bits - rootOfHalf;
    const int exponent = static_cast<int32_t>(shifted) >> 23; // rounds down on all our compilers
    const uint32_t mantissaBits = (shifted & 0x007fffffu) + rootOfHalf;
    float mantissa;
    memcpy(&mantissa, &mantissaBits, sizeof mantissa);
    const float s = (mantissa - 1.0f) / (mantissa + 1.0f);
    const float q = s * s;
    const float series = 1.0f + q * (1.0f / 3 + q * (1.0f / 5 + q * (1.0f / 7 + q * (1.0f / 9))));
    return static_cast<float>(exponent) + s * series * 2.88539008178f; // 2 / ln 2
}

// Zero and below give 0. The factor spares a branch; what it multiplies is always finite.
inline float power(float base, float exponent) {
    constexpr float smallest = 1.17549435e-38f;
    const float positive = base < smallest ? smallest : base;
    return exp2Of(exponent * log2Of(positive)) * (base < smallest ? 0.0f : 1.0f);
}

// Sine of an angle in turns, of a size up to 2^20.
inline float sineOfTurns(float turns) {
    float t = turns - static_cast<float>(roundToInt(turns)); // -1/2 to 1/2
    if (t > 0.25f) t = 0.5f - t;
    if (t < -0.25f) t = -0.5f - t;
    const float angle = t * 6.28318530718f;
    const float q = angle * angle;
    return angle * (1.0f - q * (1.0f / 6 -
                                q * (1.0f / 120 - q * (1.0f / 5040 - q * (1.0f / 362880 - q / 39916800)))));
}

inline float cosineOfTurns(float turns) {
    return sineOfTurns(turns + 0.25f);
}

// Direction of (x, y) in turns, -1/2 to 1/2, from the x axis towards the y axis; error below 1e-7. The origin
// gives 0.
inline float turnsTo(float x, float y) {
    const float sizeX = absolute(x);
    const float sizeY = absolute(y);
    const float longer = sizeX > sizeY ? sizeX : sizeY;
    const float shorter = sizeX > sizeY ? sizeY : sizeX;
    if (longer == 0) return 0.0f;
    // The series converges quickly up to a sixteenth of a turn; beyond, an eighth is taken off.
    const bool far = shorter > 0.41421356f * longer;
    const float t = far ? (shorter - longer) / (shorter + longer) : shorter / longer;
    const float q = t * t;
    const float angle =
        t *
        (1.0f - q * (1.0f / 3 - q * (1.0f / 5 - q * (1.0f / 7 - q * (1.0f / 9 - q * (1.0f / 11 - q / 13))))));
    float turns = angle * 0.15915494309f + (far ? 0.125f : 0.0f);
    if (sizeY > sizeX) turns = 0.25f - turns;
    if (x < 0) turns = 0.5f - turns;
    return y < 0 ? -turns : turns;
}

// sRGB transfer functions, IEC 61966-2-1, for 0 to 1.
inline float srgbFromLinear(float linear) {
    const float curved = 1.055f * power(linear, 1.0f / 2.4f) - 0.055f;
    return linear <= 0.0031308f ? linear * 12.92f : curved;
}

inline float linearFromSrgb(float encoded) {
    const float curved = power((encoded + 0.055f) / 1.055f, 2.4f);
    return encoded <= 0.04045f ? encoded / 12.92f : curved;
}

// Rec. 709 weights for red, green, blue.
inline float luminance(const float* colour) {
    return colour[0] * 0.2126f + colour[1] * 0.7152f + colour[2] * 0.0722f;
}

// M. Jarzynski and M. Olano, "Hash Functions for GPU Rendering", 2020: pcg3d.
struct Hash3 {
    uint32_t x, y, z;
};

inline Hash3 hash(uint32_t x, uint32_t y, uint32_t z) {
    x = x * 1664525u + 1013904223u;
    y = y * 1664525u + 1013904223u;
    z = z * 1664525u + 1013904223u;
    x += y * z;
    y += z * x;
    z += x * y;
    x ^= x >> 16;
    y ^= y >> 16;
    z ^= z >> 16;
    x += y * z;
    y += z * x;
    z += x * y;
    return {x, y, z};
}

// 0 to 1, without 1.
inline float unitFloat(uint32_t bits) {
    return static_cast<float>(static_cast<int32_t>(bits >> 8)) * (1.0f / 16777216.0f);
}

} // namespace KVSUBSTANCE_ARITHMETIC
} // namespace embedded
