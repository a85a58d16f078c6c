// The images between nodes: 32-bit float, gray (1 channel), opaque colour (3: red, green, blue) or colour (4:
// with alpha, not premultiplied). The first row is at the top; each row holds its channels one behind the
// other, so that loops run along one channel. Colours are linear light.
#pragma once

#include "embedded/rows/Plane.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace embedded {

class ImageMemory;

// Takes the samples of an image back to where they are from.
struct SampleReturn {
    std::shared_ptr<ImageMemory> memory; // null: the system
    std::size_t bytes = 0;
    std::uint64_t identity = 0; // of the image

    void operator()(float* samples) const noexcept;
};

class Image {
public:
    Image() = default;

    // Sides in pixels, at least 1. The samples are not initialised: whoever makes an image fills it. What the
    // memory keeps is used again; without one the samples come from the system. Throws std::bad_alloc.
    Image(int width, int height, int channels, std::shared_ptr<ImageMemory> memory = nullptr);

    int width() const { return width_; }
    int height() const { return height_; }
    int channels() const { return channels_; }
    bool empty() const { return !samples_; }
    bool sameSize(const Image& other) const { return width_ == other.width_ && height_ == other.height_; }

    // Of all channels.
    std::size_t rowSamples() const {
        return static_cast<std::size_t>(width_) * static_cast<std::size_t>(channels_);
    }
    std::size_t sampleCount() const { return rowSamples() * static_cast<std::size_t>(height_); }
    std::size_t bytes() const { return sampleCount() * sizeof(float); }

    // No other image of this process has the same number; 0 for an empty one. Moves with the samples.
    std::uint64_t identity() const { return samples_.get_deleter().identity; }

    float* row(int y, int channel = 0) { return samples_.get() + offset(y, channel); }
    const float* row(int y, int channel = 0) const { return samples_.get() + offset(y, channel); }
    Plane plane(int channel) const { return {row(0, channel), width_, height_, width_ * channels_}; }

private:
    std::size_t offset(int y, int channel) const {
        return rowSamples() * static_cast<std::size_t>(y) +
               static_cast<std::size_t>(width_) * static_cast<std::size_t>(channel);
    }

    int width_ = 0;
    int height_ = 0;
    int channels_ = 0;
    std::unique_ptr<float[], SampleReturn> samples_;
};

// An image as a port reads it, with as many channels as the port has: gray stands in for each colour, and an
// opaque colour has an alpha of 1. Refers to the image and to a row of ones of its width.
class ImageView {
public:
    ImageView() = default; // nothing connected
    ImageView(const Image& image, int channels, const float* ones);

    explicit operator bool() const { return channels_ > 0; }
    int width() const { return planes_[0].width; }
    int height() const { return planes_[0].height; }
    int channels() const { return channels_; }
    const Plane& plane(int channel) const { return planes_[channel]; }
    const float* row(int y, int channel = 0) const { return rowOf(planes_[channel], y); }

private:
    int channels_ = 0;
    Plane planes_[4] = {};
};

} // namespace embedded
