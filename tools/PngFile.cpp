#include "tools/PngFile.h"

#include "tools/AtomicFile.h"
#include "tools/Failure.h"
#include "tools/FileContent.h"

#include <png.h>

#include <cstring>

namespace tool {
namespace {

// libpng's simplified interface, freed whatever happens.
struct PngImage {
    png_image image{};
    PngImage() { image.version = PNG_IMAGE_VERSION; }
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;
    ~PngImage() { png_image_free(&image); }
};

} // namespace

Picture::Picture(int pictureWidth, int pictureHeight)
    : width(pictureWidth)
    , height(pictureHeight)
    , rgba(4 * static_cast<size_t>(pictureWidth) * static_cast<size_t>(pictureHeight)) {}

std::string encodePng(const Picture& picture) {
    PngImage png;
    png.image.width = static_cast<png_uint_32>(picture.width);
    png.image.height = static_cast<png_uint_32>(picture.height);
    png.image.format = PNG_FORMAT_RGBA;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(png.image);
    std::string bytes(size, '\0');
    if (!png_image_write_to_memory(&png.image, bytes.data(), &size, 0, picture.rgba.data(), 0, nullptr))
        throw Failure(std::string("the picture cannot be encoded as PNG: ") + png.image.message);
    bytes.resize(size);
    return bytes;
}

Picture readPng(const std::string& path) {
    const kv::vector<char> bytes = readFileContent(path);
    PngImage png;
    const auto fail = [&] { throw Failure(path + ": not a PNG picture: " + png.image.message); };
    if (!png_image_begin_read_from_memory(&png.image, bytes.data(), bytes.size())) fail();
    if (png.image.width > maxPictureSide || png.image.height > maxPictureSide)
        throw Failure(path + ": " + std::to_string(png.image.width) + " by " +
                      std::to_string(png.image.height) + " pixels are too many; at most " +
                      std::to_string(maxPictureSide) + " a side are read");
    png.image.format = PNG_FORMAT_RGBA;
    Picture picture(static_cast<int>(png.image.width), static_cast<int>(png.image.height));
    if (!png_image_finish_read(&png.image, nullptr, picture.rgba.data(), 0, nullptr)) fail();
    return picture;
}

void writePng(const std::string& path, const Picture& picture) {
    writeFileAtomically(path, encodePng(picture));
}

} // namespace tool
