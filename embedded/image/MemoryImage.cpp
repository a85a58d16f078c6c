#include "platform/image/Image.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

namespace {

// Zero for types whose pixels do not begin at byte boundaries.
size_t bytesPerValue(ilType type) {
    switch (type) {
    case ilUChar:
        return 1;
    case ilUShort:
        return 2;
    case ilFloat:
        return 4;
    case ilBit:
        break;
    }
    return 0;
}

size_t extent(int size) {
    return static_cast<size_t>(std::max(size, 0));
}

size_t product(size_t a, size_t b) {
    if (b != 0 && a > static_cast<size_t>(std::numeric_limits<std::ptrdiff_t>::max()) / b)
        throw std::bad_alloc();
    return a * b;
}

size_t bytesOfImage(const ilSize& size, ilType type) {
    const size_t values =
        product(product(extent(size.x), extent(size.y)), product(extent(size.z), extent(size.c)));
    return type == ilBit ? values / 8 + (values % 8 != 0) : product(values, bytesPerValue(type));
}

// Where the values of a slice lie: planes of rows of pixels, in bytes.
struct Layout {
    size_t planes;
    size_t pixel;
    size_t row;
    size_t plane;
};

Layout layoutOf(ilOrder order, size_t value, size_t channels, size_t width, size_t height) {
    switch (order) {
    case ilSequential:
        return {channels, value, width * channels * value, width * value};
    case ilSeparate:
        return {channels, value, width * value, width * height * value};
    case ilInterleaved:
        break;
    }
    return {1, channels * value, width * channels * value, 0};
}

bool isInside(int begin, int length, int size) {
    return begin >= 0 && length >= 0 && begin <= size && length <= size - begin;
}

} // namespace

ilImage::~ilImage() = default;

ilSPMemoryImg::ilSPMemoryImg(const ilSize& size, ilType type, ilOrder order, bool allocate)
    : imageSize(size)
    , imageType(type)
    , imageOrder(order) {
    if (allocate) bytes.resize(bytesOfImage(size, type));
}

ilSPMemoryImg::~ilSPMemoryImg() = default;

ilSize ilSPMemoryImg::getSize() const {
    return imageSize;
}
ilType ilSPMemoryImg::getType() const {
    return imageType;
}
ilOrder ilSPMemoryImg::getOrder() const {
    return imageOrder;
}

// The tile goes into the first slice.
ilStatus ilSPMemoryImg::setTile(int x, int y, int width, int height, const void* data,
                                const ilConfig* configuration) {
    if (!data || !isInside(x, width, imageSize.x) || !isInside(y, height, imageSize.y)) return ilBADTILE;
    if (configuration && (configuration->type != imageType || configuration->order != imageOrder))
        return ilUNSUPPORTED;
    const size_t value = bytesPerValue(imageType);
    if (value == 0) return ilUNSUPPORTED;
    try {
        bytes.resize(bytesOfImage(imageSize, imageType));
    } catch (const std::bad_alloc&) {
        return ilNOMEMORY;
    }
    if (bytes.empty()) return ilOKAY;

    const size_t channels = extent(imageSize.c);
    const Layout to = layoutOf(imageOrder, value, channels, extent(imageSize.x), extent(imageSize.y));
    const Layout from = layoutOf(imageOrder, value, channels, extent(width), extent(height));
    const unsigned char* const source = static_cast<const unsigned char*>(data);
    for (size_t plane = 0; plane < to.planes; ++plane) {
        for (size_t row = 0; row < extent(height); ++row) {
            const size_t place = plane * to.plane + (extent(y) + row) * to.row + extent(x) * to.pixel;
            std::memcpy(bytes.data() + place, source + plane * from.plane + row * from.row,
                        extent(width) * from.pixel);
        }
    }
    return ilOKAY;
}

const unsigned char* ilSPMemoryImg::getBytes() const {
    return bytes.empty() ? nullptr : bytes.data();
}
