#include "tools/PngFile.h"

#include "tools/AtomicFile.h"
#include "tools/Failure.h"
#include "tools/FileContent.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstring>

namespace tool {
namespace {

constexpr const char* receiptKeyword = "kvSubstance receipt";

// Where libpng leaves what went wrong before it jumps back. It is written in C and knows of no exceptions.
struct Fault {
    std::array<char, 160> text{};
};

[[noreturn]] void onError(png_structp png, png_const_charp message) {
    auto& fault = *static_cast<Fault*>(png_get_error_ptr(png));
    std::snprintf(fault.text.data(), fault.text.size(), "%s", message);
    png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp) {}

std::vector<png_bytep> rowsOf(const Texture& texture) {
    auto* const first = const_cast<png_bytep>(texture.samples.data()); // libpng's writer takes no const rows
    std::vector<png_bytep> rows(static_cast<size_t>(texture.height));
    for (size_t y = 0; y < rows.size(); ++y) rows[y] = first + y * texture.bytesPerRow();
    return rows;
}

int colourType(int channels) {
    static const int types[] = {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB,
                                PNG_COLOR_TYPE_RGB_ALPHA};
    return types[channels - 1];
}

// In the classes below each method that libpng may jump out of sets its own place to come back to, and has no
// objects with destructors.

class Writer {
public:
    Writer()
        : png(png_create_write_struct(PNG_LIBPNG_VER_STRING, &fault, onError, onWarning))
        , info(png ? png_create_info_struct(png) : nullptr) {}
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() { png_destroy_write_struct(&png, &info); }

    bool write(const Texture& texture, png_bytepp rows, png_textp text) {
        if (!info || setjmp(png_jmpbuf(png))) return false;
        png_set_write_fn(png, &bytes, append, nullptr);
        png_set_compression_level(png, 6);
        png_set_IHDR(png, info, static_cast<png_uint_32>(texture.width),
                     static_cast<png_uint_32>(texture.height), 8 * texture.bytesPerSample,
                     colourType(texture.channels), PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                     PNG_FILTER_TYPE_DEFAULT);
        if (texture.isSrgb) png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
        if (text) png_set_text(png, info, text, 1);
        png_set_rows(png, info, rows);
        png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
        return true;
    }

    std::string bytes;
    Fault fault;

private:
    static void append(png_structp writer, png_bytep data, size_t size) {
        bool appended = true;
        try {
            static_cast<std::string*>(png_get_io_ptr(writer))->append(reinterpret_cast<char*>(data), size);
        } catch (...) {
            appended = false;
        }
        if (!appended) png_error(writer, "there is not enough memory");
    }

    png_structp png;
    png_infop info;
};

class Reader {
public:
    explicit Reader(std::string_view file)
        : rest(file)
        , png(png_create_read_struct(PNG_LIBPNG_VER_STRING, &fault, onError, onWarning))
        , info(png ? png_create_info_struct(png) : nullptr) {}
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }

    // Then the size and the layout are known.
    bool readHeader() {
        if (!info || setjmp(png_jmpbuf(png))) return false;
        png_set_read_fn(png, &rest, take);
        png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX); // whoever reads says it better
        png_read_info(png, info);
        png_set_expand(png);
        png_set_interlace_handling(png);
        png_read_update_info(png, info);
        return true;
    }

    // Rows as many and as long as the header says.
    bool readRows(png_bytepp rows) {
        if (setjmp(png_jmpbuf(png))) return false;
        png_read_image(png, rows);
        png_read_end(png, info);
        return true;
    }

    png_uint_32 width() const { return png_get_image_width(png, info); }
    png_uint_32 height() const { return png_get_image_height(png, info); }
    int channels() const { return png_get_channels(png, info); }
    int bytesPerSample() const { return png_get_bit_depth(png, info) / 8; }
    bool isSrgb() const { return png_get_valid(png, info, PNG_INFO_sRGB) != 0; }

    std::string receipt() const {
        png_textp texts = nullptr;
        const int count = png_get_text(png, info, &texts, nullptr);
        for (int i = 0; i < count; ++i)
            if (std::strcmp(texts[i].key, receiptKeyword) == 0)
                return {texts[i].text, std::max(texts[i].text_length, texts[i].itxt_length)};
        return {};
    }

    Fault fault;

private:
    static void take(png_structp reader, png_bytep data, size_t size) {
        auto& left = *static_cast<std::string_view*>(png_get_io_ptr(reader));
        if (left.size() < size) png_error(reader, "it ends too early");
        std::memcpy(data, left.data(), size);
        left.remove_prefix(size);
    }

    std::string_view rest;
    png_structp png;
    png_infop info;
};

} // namespace

std::string encodePng(const Texture& texture, const std::string& receipt) {
    std::string key = receiptKeyword;
    std::string value = receipt;
    png_text text{};
    text.compression = PNG_TEXT_COMPRESSION_NONE;
    text.key = key.data();
    text.text = value.data();
    text.text_length = value.size();
    std::vector<png_bytep> rows = rowsOf(texture);
    Writer writer;
    if (!writer.write(texture, rows.data(), receipt.empty() ? nullptr : &text))
        throw Failure(std::string("the picture cannot be encoded as PNG: ") + writer.fault.text.data());
    return std::move(writer.bytes);
}

PngContent readPng(const std::string& path) {
    const kv::vector<char> bytes = readFileContent(path);
    Reader reader(asText(bytes));
    const auto fail = [&] { throw Failure(path + ": not a PNG picture: " + reader.fault.text.data()); };
    if (!reader.readHeader()) fail();
    if (reader.width() > maxPictureSide || reader.height() > maxPictureSide)
        throw Failure(path + ": " + std::to_string(reader.width()) + " by " +
                      std::to_string(reader.height()) + " pixels are too many; at most " +
                      std::to_string(maxPictureSide) + " a side are read");
    PngContent content;
    content.texture = Texture(static_cast<int>(reader.width()), static_cast<int>(reader.height()),
                              reader.channels(), reader.bytesPerSample(), reader.isSrgb());
    std::vector<png_bytep> rows = rowsOf(content.texture);
    if (!reader.readRows(rows.data())) fail();
    content.receipt = reader.receipt();
    return content;
}

void writePng(const std::string& path, const Texture& texture, const std::string& receipt) {
    writeFileAtomically(path, encodePng(texture, receipt));
}

} // namespace tool
