#include "embedded/nodes/Blur.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/nodes/Resample.h"
#include "embedded/rows/Arithmetic.h"
#include "embedded/rows/ResampleRows.h"
#include "embedded/rows/WeightedRows.h"

#include <algorithm>
#include <vector>

namespace embedded {
namespace {

enum Parameter { Sigma };

// Beyond this many pixels of deviation the blur works on a smaller image: what it leaves has no detail to
// lose.
constexpr float largestDirectSigma = 4.0f;
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
        weights = gaussianWeights(squareRoot(remaining) / factor);
        if (shift > 0) setSplineWeights();
    }

    int radius() const { return static_cast<int>(weights.size()) - 1; }

    int shift = 0;
    std::vector<float> weights;
    std::vector<float> splineWeights; // see splineRow

private:
    void setSplineWeights() {
        const int factor = 1 << shift;
        splineWeights.resize(4 * static_cast<std::size_t>(factor));
        for (int i = 0; i < factor; ++i) {
            const float t = (static_cast<float>(i) + 0.5f) / static_cast<float>(factor);
            const float s = 1.0f - t;
            float* const place = splineWeights.data() + i;
            place[0] = s * s * s / 6.0f;
            place[factor] = (4.0f - 6.0f * t * t + 3.0f * t * t * t) / 6.0f;
            place[2 * factor] = (4.0f - 6.0f * s * s + 3.0f * s * s * s) / 6.0f;
            place[3 * factor] = t * t * t / 6.0f;
        }
    }
};

// Samples of a row that the pass down takes at a time, so that the rows around stay in the cache.
constexpr int stripWidth = 1024;

// Passes: shrinking and blurring across, blurring down, and, when an axis was shrunk, enlarging.
class Blur : public ImageKernel {
public:
    explicit Blur(const NodeRun& run)
        : source_(run.images[0])
        , channels_(run.channels)
        , across_(run.width, sigmaOf(run))
        , down_(run.height, sigmaOf(run))
        , direct_(across_.shift == 0 && down_.shift == 0)
        , width_(run.width >> across_.shift)
        , height_(run.height >> down_.shift)
        , resultHeight_(run.height)
        , resampler_(run.width, run.height, width_, height_)
        , blurredAcross_(width_, height_, channels_, run.memory) {
        if (!direct_) blurred_ = Image(width_, height_, channels_, run.memory);
    }

    int passCount() const override { return direct_ ? 2 : 3; }
    int rowCount(int pass) const override { return pass < 2 ? height_ : resultHeight_; }
    int rowSamples(int pass) const override {
        const int samples = width_ * channels_;
        if (pass == 0) return samples * (across_.radius() + (1 << (across_.shift + down_.shift)));
        return pass == 1 ? samples * (down_.radius() + 1) : samples << (across_.shift + 2);
    }

    void computeRows(int pass, int begin, int end, Image& result) override {
        if (pass == 0) blurAcross(begin, end);
        if (pass == 1) blurDown(begin, end, direct_ ? result : blurred_);
        if (pass == 2) enlarge(begin, end, result);
    }

private:
    static float sigmaOf(const NodeRun& run) {
        return run.number(Sigma) * static_cast<float>(run.shorterSide());
    }

    void blurAcross(int begin, int end) {
        const int radius = across_.radius();
        RowResampler::Scratch scratch;
        std::vector<float> padded(static_cast<std::size_t>(width_ + 2 * radius));
        float* const row = padded.data() + radius;
        std::vector<const float*> shifted;
        for (int i = -radius; i <= radius; ++i) shifted.push_back(row + i);
        for (int y = begin; y < end; ++y) {
            for (int c = 0; c < channels_; ++c) {
                resampler_.computeRow(source_.plane(c), y, scratch, row);
                for (int i = 1; i <= radius; ++i) {
                    row[-i] = row[-i & (width_ - 1)];
                    row[width_ - 1 + i] = row[(i - 1) & (width_ - 1)];
                }
                weighPairs_(shifted.data() + radius, across_.weights.data(), radius, width_,
                            blurredAcross_.row(y, c));
            }
        }
    }

    void blurDown(int begin, int end, Image& out) const {
        const int radius = down_.radius();
        const int samples = width_ * channels_;
        std::vector<const float*> rows(2 * static_cast<std::size_t>(radius) + 1);
        for (int first = 0; first < samples; first += stripWidth) {
            const int count = std::min(stripWidth, samples - first);
            for (int y = begin; y < end; ++y) {
                for (int i = -radius; i <= radius; ++i)
                    rows[static_cast<std::size_t>(i + radius)] =
                        blurredAcross_.row((y + i) & (height_ - 1)) + first;
                weighPairs_(rows.data() + radius, down_.weights.data(), radius, count, out.row(y) + first);
            }
        }
    }

    void enlarge(int begin, int end, Image& result) const {
        std::vector<float> padded(static_cast<std::size_t>(width_) + 4);
        float* const row = padded.data() + 2;
        for (int y = begin; y < end; ++y) {
            for (int c = 0; c < channels_; ++c) {
                if (across_.shift == 0) {
                    enlargeDown(y, c, result.row(y, c));
                    continue;
                }
                enlargeDown(y, c, row);
                for (int i = 1; i <= 2; ++i) {
                    row[-i] = row[-i & (width_ - 1)];
                    row[width_ - 1 + i] = row[(i - 1) & (width_ - 1)];
                }
                splineRow_(padded.data(), across_.shift, across_.splineWeights.data(), width_,
                           result.row(y, c));
            }
        }
    }

    void enlargeDown(int y, int channel, float* out) const {
        if (down_.shift == 0) {
            std::copy_n(blurred_.row(y, channel), width_, out);
            return;
        }
        const int factor = 1 << down_.shift;
        const int ahead = y + factor / 2; // the first of the four rows is two before the one behind
        const float* rows[4];
        float weights[4];
        for (int i = 0; i < 4; ++i) {
            rows[i] = blurred_.row(((ahead >> down_.shift) - 2 + i) & (height_ - 1), channel);
            weights[i] = down_.splineWeights[static_cast<std::size_t>(i * factor + ahead % factor)];
        }
        weighRows_(rows, weights, 4, width_, out);
    }

    const ImageView source_;
    const int channels_;
    const Axis across_;
    const Axis down_;
    const bool direct_;
    const int width_; // of the image that is blurred
    const int height_;
    const int resultHeight_;
    const RowResampler resampler_;
    Image blurredAcross_;
    Image blurred_;
    WeighRows* const weighRows_ = weighRows.chosen();
    WeighPairs* const weighPairs_ = weighPairs.chosen();
    SplineRow* const splineRow_ = splineRow.chosen();
};

std::unique_ptr<ImageKernel> prepare(const NodeRun& run) {
    return std::make_unique<Blur>(run);
}

const NodeKernel kernel{nullptr, prepare};

} // namespace

NodeKind blurKind() {
    return {9,
            "blur",
            "Gaussian blur that wraps around the edges.",
            {{"source", PortChannels::Any, true, anywhere}},
            {number("sigma", ValueType::Float, 0.01, 0, 0.25,
                    "standard deviation, relative to the image's shorter side")},
            ResultChannels::Widest,
            nullptr,
            nullptr,
            150,
            &kernel};
}

} // namespace embedded
