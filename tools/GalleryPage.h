// The page of a gallery: samples with their pictures and inputs, as one file of HTML.
#pragma once

#include "tools/GraphSummary.h"

#include <string>
#include <vector>

namespace tool {

struct GalleryPicture {
    std::string file; // relative to the page; made of characters that links and attributes take as they are
    std::string title;
    std::string text; // more about it; may be empty
};

struct GallerySample {
    std::string name; // plain, as a file's
    GraphSummary graph;
    GalleryPicture picture;
    std::vector<GalleryPicture> maps;
    std::vector<GalleryPicture> presets;
};

// Nothing in it comes from elsewhere but the pictures. Light or dark, as the reader's system is.
std::string makeGalleryPage(const std::vector<GallerySample>& samples);

} // namespace tool
