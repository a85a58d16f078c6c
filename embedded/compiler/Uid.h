// The uids by which hosts and saved documents know packages, inputs and outputs.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace embedded {

// Depends on the words alone, so that it stays the same from build to build. Never 0.
std::uint32_t deriveUid(const std::vector<std::string_view>& words);

} // namespace embedded
