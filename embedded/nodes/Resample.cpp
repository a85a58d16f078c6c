#include "embedded/nodes/Resample.h"

#include "embedded/nodes/Arithmetic.h"

#include <algorithm>
#include <vector>

namespace embedded {
namespace {

// The old pixels that make a new one, along one axis: count of them from first on (wrapping), with weights
// from the table's weightStart on.
struct Taps {
    int first;
    int count;
    std::size_t weightStart;
};

struct AxisTable {
    std::vector<Taps> taps;
    std::vector<float> weights;
};

AxisTable shrinkingTable(int oldSize, int newSize) {
    AxisTable table;
    const double factor = static_cast<double>(oldSize) / newSize;
    for (int i = 0; i < newSize; ++i) {
        const double begin = i * factor;
        const double end = std::min((i + 1) * factor, static_cast<double>(oldSize));
        const int first = static_cast<int>(begin);
        const int last = std::min(static_cast<int>(end), oldSize - 1);
        Taps taps{first, 0, table.weights.size()};
        for (int pixel = first; pixel <= last; ++pixel) {
            const double covered = std::min(end, pixel + 1.0) - std::max(begin, static_cast<double>(pixel));
            if (covered <= 0) continue;
            table.weights.push_back(static_cast<float>(covered / factor));
            ++taps.count;
        }
        table.taps.push_back(taps);
    }
    return table;
}

AxisTable growingTable(int oldSize, int newSize) {
    AxisTable table;
    for (int i = 0; i < newSize; ++i) {
        const double place = (i + 0.5) * oldSize / newSize + 0.5; // one to the right, so that it is above 0
        const int right = static_cast<int>(place);
        const auto t = static_cast<float>(place - right);
        table.taps.push_back({(right + oldSize - 1) % oldSize, 2, table.weights.size()});
        table.weights.push_back(1.0f - t);
        table.weights.push_back(t);
    }
    return table;
}

AxisTable axisTable(int oldSize, int newSize) {
    return newSize < oldSize ? shrinkingTable(oldSize, newSize) : growingTable(oldSize, newSize);
}

template <int channels>
Image resampledAcross(const Image& image, int width) {
    const AxisTable table = axisTable(image.width(), width);
    Image result(width, image.height(), channels);
    for (int y = 0; y < image.height(); ++y) {
        const float* in = image.row(y);
        float* out = result.row(y);
        for (const Taps& taps : table.taps) {
            float sums[channels] = {};
            int pixel = taps.first;
            for (int i = 0; i < taps.count; ++i) {
                const float weight = table.weights[taps.weightStart + static_cast<std::size_t>(i)];
                for (int c = 0; c < channels; ++c) sums[c] += weight * in[pixel * channels + c];
                if (++pixel == image.width()) pixel = 0;
            }
            for (int c = 0; c < channels; ++c) *out++ = sums[c];
        }
    }
    return result;
}

Image resampledDown(const Image& image, int height) {
    const AxisTable table = axisTable(image.height(), height);
    Image result(image.width(), height, image.channels());
    for (int y = 0; y < height; ++y) {
        const Taps& taps = table.taps[static_cast<std::size_t>(y)];
        float* out = result.row(y);
        std::fill_n(out, result.rowSamples(), 0.0f);
        for (int i = 0; i < taps.count; ++i) {
            const float weight = table.weights[taps.weightStart + static_cast<std::size_t>(i)];
            const float* in = image.row((taps.first + i) % image.height());
            for (std::size_t s = 0; s < result.rowSamples(); ++s) out[s] += weight * in[s];
        }
    }
    return result;
}

Image copyOf(const Image& image) {
    Image copy(image.width(), image.height(), image.channels());
    std::copy_n(image.row(0), image.sampleCount(), copy.row(0));
    return copy;
}

} // namespace

Image resampled(const Image& image, int width, int height) {
    if (width == image.width() && height == image.height()) return copyOf(image);
    if (height == image.height())
        return image.channels() == 1 ? resampledAcross<1>(image, width) : resampledAcross<4>(image, width);
    if (width == image.width()) return resampledDown(image, height);
    return resampled(resampled(image, width, image.height()), width, height);
}

Image withChannels(const Image& image, int channels) {
    if (channels == image.channels()) return copyOf(image);
    Image result(image.width(), image.height(), channels);
    const float* in = image.row(0);
    float* out = result.row(0);
    const std::size_t pixels =
        static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height());
    if (channels == 1) {
        for (std::size_t i = 0; i < pixels; ++i) out[i] = luminance(in + 4 * i);
    } else {
        for (std::size_t i = 0; i < pixels; ++i) {
            out[4 * i] = out[4 * i + 1] = out[4 * i + 2] = in[i];
            out[4 * i + 3] = 1.0f;
        }
    }
    return result;
}

} // namespace embedded
