#include "embedded/nodes/Image.h"

#include "embedded/nodes/ImageMemory.h"

#include <algorithm>
#include <atomic>

namespace embedded {
namespace {

std::uint64_t newIdentity() {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

} // namespace

Image::Image(int width, int height, int channels, std::shared_ptr<ImageMemory> memory)
    : width_(width)
    , height_(height)
    , channels_(channels) {
    const std::size_t size = bytes();
    float* const samples =
        static_cast<float*>(memory ? memory->take(size) : ImageMemory::takeFromSystem(size));
    samples_ = {samples, SampleReturn{std::move(memory), size, newIdentity()}};
}

void SampleReturn::operator()(float* samples) const noexcept {
    if (memory)
        memory->giveBack(samples, bytes);
    else
        ImageMemory::giveToSystem(samples, bytes);
}

ImageView::ImageView(const Image& image, int channels, const float* ones)
    : channels_(channels) {
    for (int c = 0; c < channels; ++c) {
        const bool missingAlpha = c == 3 && image.channels() < 4;
        planes_[c] = missingAlpha ? Plane{ones, image.width(), image.height(), 0}
                                  : image.plane(std::min(c, image.channels() - 1));
    }
}

} // namespace embedded
