// What a host does with a material, from package bytes to pixels, through the library's shipped headers
// alone.
#pragma once

#include "material/Substance.h"
#include "tools/PngFile.h"

#include <optional>

namespace tool {

class MaterialSession {
public:
    // Throws Failure when the library makes no material of the packages.
    MaterialSession(const kv::vector<char>& bottom, const kv::vector<char>& top);

    const kv::Reference<kvSubstance::Substance>& material() const { return held; }

    // The base-2 logarithms of width and height. False when the size of the material is fixed.
    bool setResolution(int widthExponent, int heightExponent);

    // The texture for the present values; nothing when there is none. When it cannot be rendered, the library
    // gives the last one instead.
    std::optional<Picture> render();

private:
    kv::Reference<kvSubstance::Substance> held;
};

} // namespace tool
