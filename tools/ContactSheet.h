// Contact sheets: many pictures side by side, small, with a label below each.
#pragma once

#include "tools/Picture.h"

#include <string>
#include <vector>

namespace tool {

constexpr int defaultThumbnailSide = 256; // pixels

// Shrinks a picture to fit a square of that side, by averaging in linear light. Smaller ones stay as they
// are.
Picture makeThumbnail(const Picture& picture, int side);

struct SheetEntry {
    std::string label;
    Picture thumbnail; // no larger than the sheet's side
};

// Throws Failure when a sheet of so many would be larger than maxPictureSide, whatever the labels.
void checkContactSheet(int count, int side, int columns);

// Entries run in rows from the upper left. Columns 0: as many as make a well-filled, rather wide sheet.
// Throws Failure when the sheet would be larger than maxPictureSide.
Picture makeContactSheet(const std::vector<SheetEntry>& entries, int side, int columns = 0);

} // namespace tool
