#include "embedded/rows/CurvatureRows.h"

#include "embedded/rows/WrappedRow.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

constexpr int blockSize = 256;

int atMost(int count, int most) {
    return count < most ? count : most;
}

} // namespace

void halveRow(const Plane& image, int y, float* __restrict out) {
    const float* const upper = rowOf(image, 2 * y);
    const float* const lower = rowOf(image, 2 * y + 1);
    const int count = image.width / 2;
    for (int x = 0; x < count; ++x)
        out[x] = 0.25f * ((upper[2 * x] + upper[2 * x + 1]) + (lower[2 * x] + lower[2 * x + 1]));
}

void doubleRow(const Plane& image, int y, float* __restrict out) {
    float nearBuffer[blockSize + 2];
    float farBuffer[blockSize + 2];
    float column[blockSize + 2];
    const int nearY = y / 2;
    const int farY = y % 2 == 0 ? nearY - 1 : nearY + 1;
    for (int x = 0; x < image.width; x += blockSize) {
        const int count = atMost(image.width - x, blockSize);
        const float* const near = wrappedRow(image, nearY, x - 1, count + 2, nearBuffer);
        const float* const far = wrappedRow(image, farY, x - 1, count + 2, farBuffer);
        for (int i = 0; i < count + 2; ++i) column[i] = 0.75f * near[i] + 0.25f * far[i];
        float* __restrict const to = out + 2 * x;
        for (int i = 0; i < count; ++i) {
            to[2 * i] = 0.75f * column[i + 1] + 0.25f * column[i];
            to[2 * i + 1] = 0.75f * column[i + 1] + 0.25f * column[i + 2];
        }
    }
}

void meanRow(const Plane& image, const MeanWeights& mean, int y, float* __restrict out) {
    constexpr int mostColumns = blockSize + 2 * mostReach;
    float above[mostColumns];
    float below[mostColumns];
    float column[mostColumns];
    for (int x = 0; x < image.width; x += blockSize) {
        const int count = atMost(image.width - x, blockSize);
        const int columns = count + 2 * mean.reach;
        const int firstX = x - mean.reach;
        const float* const middle = wrappedRow(image, y, firstX, columns, above);
        for (int i = 0; i < columns; ++i) column[i] = mean.weights[0] * middle[i];
        for (int d = 1; d <= mean.reach; ++d) {
            const float* const upper = wrappedRow(image, y - d, firstX, columns, above);
            const float* const lower = wrappedRow(image, y + d, firstX, columns, below);
            const float weight = mean.weights[d];
            for (int i = 0; i < columns; ++i) column[i] += weight * (upper[i] + lower[i]);
        }
        const float* const centre = column + mean.reach;
        float* __restrict const to = out + x;
        for (int i = 0; i < count; ++i) to[i] = mean.weights[0] * centre[i];
        for (int d = 1; d <= mean.reach; ++d) {
            const float weight = mean.weights[d];
            for (int i = 0; i < count; ++i) to[i] += weight * (centre[i - d] + centre[i + d]);
        }
    }
}

void curvatureRow(const CurvatureMeasure& measure, const float* heights, const float* means,
                  const float* breakup, int count, float* __restrict out) {
    const float scale = measure.scale;
    switch (measure.result) {
    case CurvatureResult::Signed:
        for (int i = 0; i < count; ++i)
            out[i] = clamp(0.5f + 0.5f * scale * (heights[i] - means[i]), 0.0f, 1.0f);
        return;
    case CurvatureResult::Edges:
        for (int i = 0; i < count; ++i) out[i] = clamp(scale * (heights[i] - means[i]), 0.0f, 1.0f);
        return;
    case CurvatureResult::Cavities:
        for (int i = 0; i < count; ++i) out[i] = clamp(scale * (means[i] - heights[i]), 0.0f, 1.0f);
        return;
    case CurvatureResult::Wear:
        for (int i = 0; i < count; ++i) {
            const float edge = clamp(scale * (heights[i] - means[i]), 0.0f, 1.0f);
            const float resistance = breakup ? clamp(breakup[i], 0.0f, 1.0f) : 0.0f;
            out[i] = clamp((edge - resistance) * measure.contrast, 0.0f, 1.0f);
        }
        return;
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
