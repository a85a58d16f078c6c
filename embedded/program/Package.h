// Package files: the description text that the library reads, and the assembly that the engine runs.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace embedded {

struct Package {
    std::string description; // XML, UTF-8, without zero bytes
    std::vector<unsigned char> assembly;
};

std::vector<unsigned char> encodePackage(const Package& package);

// Nothing for bytes that are no package file. Safe for any bytes, at any alignment. The assembly is not
// looked into.
std::optional<Package> decodePackage(const void* data, std::size_t size);

} // namespace embedded
