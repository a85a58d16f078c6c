// How an axis of an image is divided into cells, as its pixels meet them.
#pragma once

#include <cstddef>
#include <vector>

namespace embedded {

struct CellAxis {
    // The cells may be shifted by 0 to 1 of a cell against the image; then there is one cell more, which is
    // the first one again.
    CellAxis(int size, int cellCount, double shift = 0)
        : cells(cellCount)
        , cellOf(static_cast<std::size_t>(size))
        , places(static_cast<std::size_t>(size))
        , firstPixels(static_cast<std::size_t>(cellCount) + 2, size) {
        int nextCell = 0;
        for (int pixel = 0; pixel < size; ++pixel) {
            const double position = (pixel + 0.5) * cellCount / size + shift;
            const int cell = static_cast<int>(position);
            cellOf[static_cast<std::size_t>(pixel)] = cell;
            places[static_cast<std::size_t>(pixel)] = static_cast<float>(position - cell);
            while (nextCell <= cell) firstPixels[static_cast<std::size_t>(nextCell++)] = pixel;
        }
    }

    int cellAt(int pixel) const { return cellOf[static_cast<std::size_t>(pixel)]; }
    float placeAt(int pixel) const { return places[static_cast<std::size_t>(pixel)]; }

    int cells;
    std::vector<int> cellOf;      // of the middle of each pixel
    std::vector<float> places;    // of the middle of each pixel in its cell, 0 to 1
    std::vector<int> firstPixels; // of each cell, and behind the last one the size
};

// Calls visit(cell, begin, end) for the cells that pixels [x, x + count) meet, with the pixels that meet
// them.
template <typename Visit>
void eachCell(const CellAxis& axis, int x, int count, Visit visit) {
    const int last = x + count;
    for (int begin = x; begin < last;) {
        const int cell = axis.cellAt(begin);
        const int next = axis.firstPixels[static_cast<std::size_t>(cell) + 1];
        const int end = next < last ? next : last;
        visit(cell, begin, end);
        begin = end;
    }
}

} // namespace embedded
