#include "embedded/rows/EncodingRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

inline uint32_t step8(float value) {
    return static_cast<uint32_t>(static_cast<int32_t>(clamp(value, 0.0f, 1.0f) * 255.0f + 0.5f));
}

inline uint32_t step16(float value) {
    return static_cast<uint32_t>(static_cast<int32_t>(clamp(value, 0.0f, 1.0f) * 65535.0f + 0.5f));
}

// sRGB, IEC 61966-2-1, for 0 to 1. The power is a polynomial of the fourth root; its error is below 2e-6.
inline float encodeSrgb(float value) {
    const float linear = clamp(value, 0.0f, 1.0f);
    const float root = squareRoot(squareRoot(linear));
    const float curved =
        ((((((0.0648935959f * root - 0.306116045f) * root + 0.638893962f) * root - 0.839066267f) * root +
           1.36026978f) *
              root +
          0.140766889f) *
             root -
         0.0596408695f);
    return linear <= 0.0031308f ? linear * 12.92f : curved;
}

// The machines that this runs on store the lowest byte first.
inline void storePixel(uint32_t red, uint32_t green, uint32_t blue, uint32_t alpha, int i,
                       unsigned char* out) {
    const uint32_t pixel = red | green << 8 | blue << 16 | alpha << 24;
    memcpy(out + 4 * i, &pixel, 4);
}

} // namespace

void encodeGray8Row(const float* in, int count, unsigned char* __restrict out) {
    for (int i = 0; i < count; ++i) out[i] = static_cast<unsigned char>(step8(in[i]));
}

void encodeGray16Row(const float* in, int count, unsigned char* __restrict out) {
    for (int i = 0; i < count; ++i) {
        const auto step = static_cast<uint16_t>(step16(in[i]));
        memcpy(out + 2 * i, &step, 2);
    }
}

void encodeColour8Row(const float* const* in, int count, unsigned char* out) {
    const float* __restrict red = in[0];
    const float* __restrict green = in[1];
    const float* __restrict blue = in[2];
    const float* __restrict alpha = in[3];
    unsigned char* __restrict bytes = out;
    for (int i = 0; i < count; ++i)
        storePixel(step8(red[i]), step8(green[i]), step8(blue[i]), step8(alpha[i]), i, bytes);
}

void encodeSrgb8Row(const float* const* in, int count, unsigned char* out) {
    const float* __restrict red = in[0];
    const float* __restrict green = in[1];
    const float* __restrict blue = in[2];
    const float* __restrict alpha = in[3];
    unsigned char* __restrict bytes = out;
    for (int i = 0; i < count; ++i)
        storePixel(step8(encodeSrgb(red[i])), step8(encodeSrgb(green[i])), step8(encodeSrgb(blue[i])),
                   step8(alpha[i]), i, bytes);
}

void encodeColour16Row(const float* const* in, int count, unsigned char* out) {
    for (int c = 0; c < 4; ++c) {
        const float* __restrict channel = in[c];
        unsigned char* __restrict bytes = out + 2 * c;
        for (int i = 0; i < count; ++i) {
            const auto step = static_cast<uint16_t>(step16(channel[i]));
            memcpy(bytes + 8 * i, &step, 2);
        }
    }
}

void encodeColourFloatRow(const float* const* in, int count, unsigned char* __restrict out) {
    for (int c = 0; c < 4; ++c)
        for (int i = 0; i < count; ++i) memcpy(out + 16 * i + 4 * c, in[c] + i, 4);
}

} // namespace embedded::KVSUBSTANCE_ROWS
