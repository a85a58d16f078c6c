#include "embedded/nodes/Blur.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/nodes/Resample.h"

#include <algorithm>
#include <vector>

namespace embedded {
namespace {

enum Parameter { Sigma };

// Beyond this many pixels of deviation the blur works on a smaller image: what it leaves has no detail to
// lose.
constexpr float largestDirectSigma = 6.0f;
constexpr float radiusInSigmas = 3.5f;

// The weights from the middle outwards; together (both sides) they sum to 1.
std::vector<float> gaussianWeights(float sigma) {
    std::vector<float> weights = {1.0f};
    if (sigma <= 0.05f) return weights;
    const int radius = floorToInt(sigma * radiusInSigmas) + 1;
    float sum = 1.0f;
    for (int i = 1; i <= radius; ++i) {
        const float distance = static_cast<float>(i) / sigma;
        weights.push_back(exp2Of(-0.72134752f * distance * distance)); // e^(-d^2 / 2)
        sum += 2.0f * weights.back();
    }
    for (float& weight : weights) weight /= sum;
    return weights;
}

// How one axis is treated: shrunk by 2^shift, blurred there, enlarged again by a cubic B-spline.
struct Axis {
    Axis(int size, float sigma) {
        while (sigma / static_cast<float>(1 << shift) > largestDirectSigma && (size >> shift) > 1) ++shift;
        const auto factor = static_cast<float>(1 << shift);
        // Variances add: the box of the shrinking and the spline of the enlarging have done a part of the
        // work.
        const float box = shift == 0 ? 0.0f : (factor * factor - 1.0f) / 12.0f;
        const float spline = shift == 0 ? 0.0f : factor * factor / 3.0f;
        const float remaining = clamp(sigma * sigma - box - spline, 0.0f, sigma * sigma);
        weights = gaussianWeights(std::sqrt(remaining) / factor);
    }

    int shift = 0;
    std::vector<float> weights;
};

// One place of the enlarging: a pixel of the small image and the weights of it and its neighbours.
struct SplinePlace {
    SplinePlace(int position, int shift) {
        const float place = (static_cast<float>(position) + 0.5f) / static_cast<float>(1 << shift) - 0.5f;
        const int pixel = floorToInt(place);
        const float t = place - static_cast<float>(pixel);
        const float s = 1.0f - t;
        first = pixel - 1;
        weights[0] = s * s * s / 6.0f;
        weights[1] = (4.0f - 6.0f * t * t + 3.0f * t * t * t) / 6.0f;
        weights[2] = (4.0f - 6.0f * s * s + 3.0f * s * s * s) / 6.0f;
        weights[3] = t * t * t / 6.0f;
    }

    int first;
    float weights[4];
};

// Passes: across, down, and, when an axis was shrunk, enlarging.
template <int channels>
class BlurRows : public RowKernel {
public:
    BlurRows(const NodeRun& run, const Axis& across, const Axis& down)
        : RowKernel(run.height)
        , across_(across)
        , down_(down)
        , direct_(across.shift == 0 && down.shift == 0)
        , source_(run.sources[0])
        , width_(run.width >> across.shift)
        , height_(run.height >> down.shift)
        , blurredAcross_(width_, height_, channels) {
        if (direct_) return;
        shrunk_ = resampled(*source_, width_, height_);
        source_ = &shrunk_;
        blurred_ = Image(width_, height_, channels);
        for (int x = 0; x < run.width; ++x) places_.emplace_back(x, across.shift);
    }

    int passCount() const override { return direct_ ? 2 : 3; }
    int rowCount(int pass) const override { return pass < 2 ? height_ : RowKernel::rowCount(pass); }

    void computeRows(int pass, int begin, int end, Image& result) override {
        if (pass == 0) blurAcross(begin, end);
        if (pass == 1) blurDown(begin, end, direct_ ? result : blurred_);
        if (pass == 2) enlarge(begin, end, result);
    }

private:
    void blurAcross(int begin, int end) {
        const int radius = static_cast<int>(across_.weights.size()) - 1;
        std::vector<float> padded(static_cast<std::size_t>((width_ + 2 * radius) * channels));
        for (int y = begin; y < end; ++y) {
            const float* in = source_->row(y);
            for (int x = -radius; x < width_ + radius; ++x)
                std::copy_n(in + (x & (width_ - 1)) * channels, channels,
                            &padded[static_cast<std::size_t>((x + radius) * channels)]);
            weighRow(
                across_.weights, [&](int i) { return padded.data() + (radius + i) * channels; },
                blurredAcross_.row(y));
        }
    }

    void blurDown(int begin, int end, Image& out) const {
        for (int y = begin; y < end; ++y)
            weighRow(
                down_.weights, [&](int i) { return blurredAcross_.row((y + i) & (height_ - 1)); },
                out.row(y));
    }

    // A row as the weighted sum of rowAt(-radius) to rowAt(radius).
    template <typename RowAt>
    void weighRow(const std::vector<float>& weights, RowAt rowAt, float* out) const {
        const int samples = width_ * channels;
        const float* middle = rowAt(0);
        for (int s = 0; s < samples; ++s) out[s] = middle[s] * weights[0];
        for (std::size_t i = 1; i < weights.size(); ++i) {
            const float weight = weights[i];
            const float* before = rowAt(-static_cast<int>(i));
            const float* after = rowAt(static_cast<int>(i));
            for (int s = 0; s < samples; ++s) out[s] += weight * (before[s] + after[s]);
        }
    }

    void enlarge(int begin, int end, Image& result) const {
        std::vector<float> column(static_cast<std::size_t>(width_ * channels));
        for (int y = begin; y < end; ++y) {
            const SplinePlace place(y, down_.shift);
            const float* rows[4];
            for (int i = 0; i < 4; ++i) rows[i] = blurred_.row((place.first + i) & (height_ - 1));
            for (std::size_t s = 0; s < column.size(); ++s)
                column[s] = down_.shift == 0
                                ? rows[1][s]
                                : weigh(place.weights, rows[0][s], rows[1][s], rows[2][s], rows[3][s]);
            enlargeRow(column.data(), result.row(y));
        }
    }

    void enlargeRow(const float* in, float* out) const {
        if (across_.shift == 0) {
            std::copy_n(in, width_ * channels, out);
            return;
        }
        for (const SplinePlace& place : places_) {
            const float* pixels[4];
            for (int i = 0; i < 4; ++i) pixels[i] = in + ((place.first + i) & (width_ - 1)) * channels;
            for (int c = 0; c < channels; ++c)
                *out++ = weigh(place.weights, pixels[0][c], pixels[1][c], pixels[2][c], pixels[3][c]);
        }
    }

    static float weigh(const float* weights, float a, float b, float c, float d) {
        return weights[0] * a + weights[1] * b + weights[2] * c + weights[3] * d;
    }

    Axis across_;
    Axis down_;
    bool direct_;
    const Image* source_;
    int width_; // of the image that is blurred
    int height_;
    Image shrunk_;
    Image blurredAcross_;
    Image blurred_;
    std::vector<SplinePlace> places_;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const float sigma = run.number(Sigma) * static_cast<float>(run.shorterSide());
    const Axis across(run.width, sigma);
    const Axis down(run.height, sigma);
    if (run.channels == 1) return std::make_unique<BlurRows<1>>(run, across, down);
    return std::make_unique<BlurRows<4>>(run, across, down);
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind blurKind() {
    return {9,
            "blur",
            "Gaussian blur that wraps around the edges.",
            {{"source", PortChannels::Any, true}},
            {number("sigma", ValueType::Float, 0.01, 0, 0.25,
                    "standard deviation, relative to the image's shorter side")},
            ResultChannels::Widest,
            true,
            100,
            &kernel};
}

} // namespace embedded
