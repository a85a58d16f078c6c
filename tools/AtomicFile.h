// Writes whole files: they appear under their name complete or not at all.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool {

// Fails when a file could not be written there, or when the command needs it otherwise: to be called before
// long work for its sake.
void checkDestination(const std::string& path, const std::vector<std::string>& needed = {});

// Writes to a temporary name in the same folder, flushes to the disk, and renames. When that fails, nothing
// is left of the new file and an old one is as it was. Links are followed.
void writeFileAtomically(const std::string& path, std::string_view bytes);

} // namespace tool
