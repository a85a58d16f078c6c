// What a host does with a material, from package bytes to pixels, through the library's shipped headers
// alone.
#pragma once

#include "material/Substance.h"
#include "tools/Picture.h"

#include <optional>

namespace tool {

class MaterialSession {
public:
    // Throws Failure when the library makes no material of the packages.
    MaterialSession(const kv::vector<char>& bottom, const kv::vector<char>& top);

    const kv::Reference<kvSubstance::Substance>& material() const { return held; }

    // The texture for the present values; nothing when there is none. When it cannot be rendered, the library
    // gives the last one instead. The library does not tell whether colours are sRGB-encoded.
    std::optional<Texture> render();

private:
    kv::Reference<kvSubstance::Substance> held;
};

} // namespace tool
