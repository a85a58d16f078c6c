// Digests by which files and pixels are told apart. They notice accidents, not forgery.
#pragma once

#include <string>
#include <string_view>

namespace tool {

// 32 hexadecimal digits: the 128-bit XXH3 of the bytes (Collet 2019) in its canonical, big-endian form.
std::string digestOf(std::string_view bytes);

} // namespace tool
