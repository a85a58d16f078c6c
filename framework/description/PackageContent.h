// Taking a package file apart with the linker.
#pragma once

#include "support/GuardedXml.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace SubstanceAir {

struct PackageContent {
    std::shared_ptr<const support::GuardedText> description; // XML; null when there is none
    std::vector<char> assembly;
};

// What the linker does not deliver anew is what the package before it had. Throws only when memory runs out,
// here or, as far as it says so, in the linker. From any thread; calls wait for each other.
PackageContent splitPackage(const void* data, size_t size);

} // namespace SubstanceAir
