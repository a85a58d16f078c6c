// Taking a package file apart with the linker.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace SubstanceAir {

struct PackageContent {
    std::string description; // XML
    std::vector<char> assembly;
};

// Never fails: what the linker does not deliver anew is what the package before it had. From any thread;
// calls wait for each other.
PackageContent splitPackage(const void* data, size_t size);

} // namespace SubstanceAir
