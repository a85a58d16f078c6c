// The images between nodes: 32-bit float, gray (1 channel) or colour (4 channels: red, green, blue, alpha,
// not premultiplied), channels interleaved, rows tightly packed, the first row at the top. Colours are linear
// light.
#pragma once

#include <cstddef>
#include <memory>

namespace embedded {

class Image {
public:
    Image() = default;

    // Sides in pixels, at least 1. The samples are not initialised: whoever makes an image fills it.
    Image(int width, int height, int channels)
        : width_(width)
        , height_(height)
        , channels_(channels)
        , samples_(new float[sampleCount()]) {}

    int width() const { return width_; }
    int height() const { return height_; }
    int channels() const { return channels_; }
    bool empty() const { return !samples_; }
    bool sameSize(const Image& other) const { return width_ == other.width_ && height_ == other.height_; }

    std::size_t rowSamples() const {
        return static_cast<std::size_t>(width_) * static_cast<std::size_t>(channels_);
    }
    std::size_t sampleCount() const { return rowSamples() * static_cast<std::size_t>(height_); }

    float* row(int y) { return samples_.get() + rowSamples() * static_cast<std::size_t>(y); }
    const float* row(int y) const { return samples_.get() + rowSamples() * static_cast<std::size_t>(y); }

private:
    int width_ = 0;
    int height_ = 0;
    int channels_ = 0;
    std::unique_ptr<float[]> samples_;
};

} // namespace embedded
