#include "tools/ContactSheet.h"

#include "tools/Failure.h"
#include "tools/Font.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tool {
namespace {

constexpr unsigned char backgroundGray = 38;
constexpr unsigned char labelGray = 222;
constexpr int margin = 16;     // pixels around the sheet and between its cells
constexpr int labelMargin = 8; // pixels above a label

// IEC 61966-2-1.
float linearFromSrgb(unsigned char byte) {
    static const std::array<float, 256> table = [] {
        std::array<float, 256> values{};
        for (size_t i = 0; i < values.size(); ++i) {
            const double encoded = static_cast<double>(i) / 255;
            values[i] = static_cast<float>(encoded <= 0.04045 ? encoded / 12.92
                                                              : std::pow((encoded + 0.055) / 1.055, 2.4));
        }
        return values;
    }();
    return table[byte];
}

unsigned char srgbFromLinear(float linear) {
    const double encoded = linear <= 0.0031308f
                               ? linear * 12.92
                               : 1.055 * std::pow(static_cast<double>(linear), 1 / 2.4) - 0.055;
    return static_cast<unsigned char>(std::clamp(std::lround(encoded * 255), 0L, 255L));
}

// The average of a rectangle of a picture, its colours weighted by alpha.
void average(const Picture& picture, int left, int top, int right, int bottom, unsigned char* out) {
    std::array<double, 3> colour{};
    double alpha = 0;
    for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x) {
            const unsigned char* const pixel = picture.pixel(x, y);
            for (size_t c = 0; c < 3; ++c) colour[c] += linearFromSrgb(pixel[c]) * pixel[3];
            alpha += pixel[3];
        }
    for (size_t c = 0; c < 3; ++c)
        out[c] = alpha > 0 ? srgbFromLinear(static_cast<float>(colour[c] / alpha)) : 0;
    out[3] =
        static_cast<unsigned char>(std::lround(alpha / (static_cast<double>(right - left) * (bottom - top))));
}

// Lays a pixel over the sheet's background.
void compose(const unsigned char* pixel, unsigned char* out) {
    const float alpha = static_cast<float>(pixel[3]) / 255;
    for (int c = 0; c < 3; ++c)
        out[c] =
            srgbFromLinear(linearFromSrgb(pixel[c]) * alpha + linearFromSrgb(backgroundGray) * (1 - alpha));
}

// The number of columns, between a square and 16 by 10, that leaves the fewest cells empty.
int chooseColumns(int count) {
    const int narrowest = static_cast<int>(std::ceil(std::sqrt(count)));
    int best = narrowest;
    const auto emptyCells = [count](int columns) { return (columns - count % columns) % columns; };
    for (int columns = narrowest; columns <= std::lround(narrowest * 1.6); ++columns)
        if (emptyCells(columns) < emptyCells(best)) best = columns;
    return best;
}

std::string shortened(const std::string& label, size_t length) {
    return label.size() <= length ? label : label.substr(0, length - 2) + "..";
}

struct SheetSize {
    long long width;
    long long height;
};

SheetSize sizeOf(int count, int columns, int side, int cellHeight) {
    const int rows = (count + columns - 1) / columns;
    const SheetSize size{margin + static_cast<long long>(columns) * (side + margin),
                         margin + static_cast<long long>(rows) * (cellHeight + margin)};
    if (size.width > maxPictureSide || size.height > maxPictureSide)
        throw Failure("the contact sheet would be " + std::to_string(size.width) + " by " +
                      std::to_string(size.height) + " pixels, and at most " + std::to_string(maxPictureSide) +
                      " a side are possible; take fewer pictures, other columns or smaller thumbnails");
    return size;
}

int cellHeightFor(int side, int scale) {
    return side + labelMargin + scale * fontHeight;
}

} // namespace

Picture makeThumbnail(const Picture& picture, int side) {
    const int longest = std::max(picture.width, picture.height);
    const auto scaled = [&](int length) {
        return std::max(1, static_cast<int>(static_cast<long long>(length) * side / longest));
    };
    Picture thumbnail(scaled(picture.width), scaled(picture.height));
    const auto edge = [](int i, int from, int to) {
        return static_cast<int>(static_cast<long long>(i) * from / to);
    };
    for (int y = 0; y < thumbnail.height; ++y)
        for (int x = 0; x < thumbnail.width; ++x) {
            const int left = edge(x, picture.width, thumbnail.width);
            const int top = edge(y, picture.height, thumbnail.height);
            average(picture, left, top, std::max(left + 1, edge(x + 1, picture.width, thumbnail.width)),
                    std::max(top + 1, edge(y + 1, picture.height, thumbnail.height)), thumbnail.pixel(x, y));
        }
    return thumbnail;
}

void checkContactSheet(int count, int side, int columns) {
    sizeOf(count, columns > 0 ? columns : chooseColumns(count), side, cellHeightFor(side, 1));
}

Picture makeContactSheet(const std::vector<SheetEntry>& entries, int side, int columns) {
    const int count = static_cast<int>(entries.size());
    if (columns <= 0) columns = chooseColumns(count);

    // Large letters when all labels have room.
    size_t longest = 0;
    for (const SheetEntry& entry : entries) longest = std::max(longest, entry.label.size());
    const int scale = longest * 2 * fontAdvance <= static_cast<size_t>(side) ? 2 : 1;
    const size_t room = std::max<size_t>(3, static_cast<size_t>(side / (scale * fontAdvance)));
    const int cellHeight = cellHeightFor(side, scale);
    const auto [width, height] = sizeOf(count, columns, side, cellHeight);
    Picture sheet(static_cast<int>(width), static_cast<int>(height));
    for (size_t i = 0; i < sheet.rgba.size(); ++i) sheet.rgba[i] = i % 4 == 3 ? 255 : backgroundGray;

    for (int i = 0; i < count; ++i) {
        const auto& [label, thumbnail] = entries[static_cast<size_t>(i)];
        const int left = margin + i % columns * (side + margin);
        const int top = margin + i / columns * (cellHeight + margin);
        const int offsetX = left + (side - thumbnail.width) / 2;
        const int offsetY = top + (side - thumbnail.height) / 2;
        for (int y = 0; y < thumbnail.height; ++y)
            for (int x = 0; x < thumbnail.width; ++x)
                compose(thumbnail.pixel(x, y), sheet.pixel(offsetX + x, offsetY + y));

        const std::string text = shortened(label, room);
        const int textWidth = static_cast<int>(text.size()) * fontAdvance * scale - scale;
        drawText(sheet, left + (side - textWidth) / 2, top + side + labelMargin, scale, text, labelGray);
    }
    return sheet;
}

} // namespace tool
