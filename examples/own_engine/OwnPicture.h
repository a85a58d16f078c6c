// What the own programs look like: gradients that follow numbers, images, and mixtures of them.
#pragma once

#include "OwnProgram.h"

#include <array>
#include <memory>
#include <vector>

namespace own {

using Pixel = std::array<float, 3>; // linear red, green and blue, 0 to 1

struct Image {
    std::size_t width = 0, height = 0;
    std::vector<Pixel> pixels;
};

// What inputs are set to. Images are shared and never change, so that a copy is a snapshot.
struct Values {
    std::vector<Words> numbers;
    std::vector<std::shared_ptr<const Image>> images; // null: no image
};

Values defaultValues(const Program& program);

// Copies the full-size level. Null when it cannot be read.
std::shared_ptr<const Image> readImage(const SubstanceTextureInput& texture);

// 8-bit RGBA, all levels.
struct Picture {
    std::size_t width = 0, height = 0;
    unsigned int levels = 1;
    std::vector<unsigned char> bytes;
};

Picture paint(const Program& program, const Values& values, unsigned int output);

} // namespace own
