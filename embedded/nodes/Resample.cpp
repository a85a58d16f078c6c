#include "embedded/nodes/Resample.h"

#include "embedded/rows/LuminanceRows.h"

#include <algorithm>

namespace embedded {
namespace {

void addShrinkingTaps(AxisTaps& taps, int oldSize, int newSize) {
    const double factor = static_cast<double>(oldSize) / newSize;
    for (int i = 0; i < newSize; ++i) {
        const double begin = i * factor;
        const double end = std::min((i + 1) * factor, static_cast<double>(oldSize));
        const int first = static_cast<int>(begin);
        const int last = std::min(static_cast<int>(end), oldSize - 1);
        taps.first.push_back(first);
        taps.weightStart.push_back(taps.weights.size());
        for (int pixel = first; pixel <= last; ++pixel) {
            const double covered = std::min(end, pixel + 1.0) - std::max(begin, static_cast<double>(pixel));
            if (covered > 0) taps.weights.push_back(static_cast<float>(covered / factor));
        }
        taps.count.push_back(static_cast<int>(taps.weights.size() - taps.weightStart.back()));
    }
}

struct Place {
    int right; // the pixel to the right of it; 0 to the old size
    float t;   // from the pixel to the left of it
};

Place growingPlace(int i, int oldSize, int newSize) {
    const double place = (i + 0.5) * oldSize / newSize + 0.5; // one to the right, so that it is above 0
    const int right = static_cast<int>(place);
    return {right, static_cast<float>(place - right)};
}

void addGrowingTaps(AxisTaps& taps, int oldSize, int newSize) {
    for (int i = 0; i < newSize; ++i) {
        const Place place = growingPlace(i, oldSize, newSize);
        taps.first.push_back((place.right + oldSize - 1) % oldSize);
        taps.count.push_back(2);
        taps.weightStart.push_back(taps.weights.size());
        taps.weights.push_back(1.0f - place.t);
        taps.weights.push_back(place.t);
    }
}

void addSameTaps(AxisTaps& taps, int size) {
    for (int i = 0; i < size; ++i) {
        taps.first.push_back(i);
        taps.count.push_back(1);
        taps.weightStart.push_back(0);
    }
    taps.weights.push_back(1.0f);
}

int halvingsBetween(int oldSize, int newSize) {
    int halvings = 0;
    while (newSize << halvings < oldSize) ++halvings;
    return newSize << halvings == oldSize ? halvings : 0;
}

} // namespace

AxisTaps::AxisTaps(int oldSize, int newSize) {
    if (newSize < oldSize)
        addShrinkingTaps(*this, oldSize, newSize);
    else if (newSize > oldSize)
        addGrowingTaps(*this, oldSize, newSize);
    else
        addSameTaps(*this, newSize);
}

RowResampler::RowResampler(int oldWidth, int oldHeight, int newWidth, int newHeight)
    : oldWidth_(oldWidth)
    , newWidth_(newWidth)
    , halvings_(halvingsBetween(oldWidth, newWidth))
    , across_(oldWidth, std::min(oldWidth, newWidth))
    , down_(oldHeight, newHeight) {
    if (newWidth <= oldWidth) return;
    for (int i = 0; i < newWidth; ++i) {
        const Place place = growingPlace(i, oldWidth, newWidth);
        left_.push_back(place.right);
        t_.push_back(place.t);
    }
}

// The rows are joined first, so that no image is needed between.
void RowResampler::computeRow(const Plane& plane, int y, Scratch& scratch, float* out) const {
    scratch.row.resize(static_cast<std::size_t>(oldWidth_) + 2);
    float* const row = scratch.row.data() + 1; // room for a pixel at either side
    if (newWidth_ == oldWidth_) {
        const float* const same = oldRow(plane, y, scratch, out);
        if (same != out) std::copy_n(same, newWidth_, out);
    } else if (newWidth_ > oldWidth_) {
        const float* const old = oldRow(plane, y, scratch, row);
        if (old != row) std::copy_n(old, oldWidth_, row);
        row[-1] = row[oldWidth_ - 1];
        row[oldWidth_] = row[0];
        interpolateRow_(row - 1, left_.data(), t_.data(), newWidth_, out);
    } else if (halvings_ > 0) {
        const float* in = oldRow(plane, y, scratch, row);
        scratch.halved.resize(static_cast<std::size_t>(oldWidth_));
        float* places[] = {scratch.halved.data(), row};
        for (int i = 1; i <= halvings_; ++i) {
            float* const place = i == halvings_ ? out : places[(i - 1) % 2];
            halveRow_(in, oldWidth_ >> i, place);
            in = place;
        }
    } else {
        shrinkRow(oldRow(plane, y, scratch, row), out);
    }
}

// The old rows that make a new one, joined in the place, or a row of the plane.
const float* RowResampler::oldRow(const Plane& plane, int y, Scratch& scratch, float* place) const {
    const auto index = static_cast<std::size_t>(y);
    const int first = down_.first[index];
    if (down_.count[index] == 1) return rowOf(plane, first);
    scratch.rows.clear();
    for (int i = 0; i < down_.count[index]; ++i)
        scratch.rows.push_back(rowOf(plane, (first + i) % plane.height));
    weighRows_(scratch.rows.data(), down_.weights.data() + down_.weightStart[index], down_.count[index],
               oldWidth_, place);
    return place;
}

void RowResampler::shrinkRow(const float* in, float* out) const {
    for (std::size_t x = 0; x < across_.count.size(); ++x) {
        const float* const weights = across_.weights.data() + across_.weightStart[x];
        const float* const pixels = in + across_.first[x];
        float sum = 0;
        for (int i = 0; i < across_.count[x]; ++i) sum += weights[i] * pixels[i];
        out[x] = sum;
    }
}

std::unique_ptr<ImageKernel> prepareResampling(const ImageView& source, int width, int height) {
    class Resampling : public ImageKernel {
    public:
        Resampling(const ImageView& source, int width, int height)
            : source_(source)
            , resampler_(source.width(), source.height(), width, height) {}

        int passCount() const override { return 1; }
        int rowCount(int) const override { return resampler_.height(); }
        int rowSamples(int) const override {
            const int rows = std::max(1, source_.height() / resampler_.height());
            return source_.channels() * std::max(resampler_.width(), rows * source_.width());
        }
        void computeRows(int, int begin, int end, Image& result) override {
            RowResampler::Scratch scratch;
            for (int y = begin; y < end; ++y)
                for (int c = 0; c < source_.channels(); ++c)
                    resampler_.computeRow(source_.plane(c), y, scratch, result.row(y, c));
        }

    private:
        const ImageView source_;
        const RowResampler resampler_;
    };
    return std::make_unique<Resampling>(source, width, height);
}

Image resampled(const Image& image, int width, int height) {
    Image result(width, height, image.channels());
    const ImageView source(image, image.channels(), nullptr);
    prepareResampling(source, width, height)->computeRows(0, 0, height, result);
    return result;
}

Image withChannels(const Image& image, int channels) {
    Image result(image.width(), image.height(), channels);
    for (int y = 0; y < image.height(); ++y) {
        if (channels == 1 && image.channels() > 1) {
            luminanceRow.chosen()(image.row(y, 0), image.row(y, 1), image.row(y, 2), image.width(),
                                  result.row(y));
            continue;
        }
        for (int c = 0; c < channels; ++c) {
            if (c == 3 && image.channels() < 4)
                std::fill_n(result.row(y, c), image.width(), 1.0f);
            else
                std::copy_n(image.row(y, std::min(c, image.channels() - 1)), image.width(), result.row(y, c));
        }
    }
    return result;
}

} // namespace embedded
