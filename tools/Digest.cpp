#include "tools/Digest.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace tool {

std::string digestOf(std::string_view bytes) {
    XXH128_canonical_t canonical;
    XXH128_canonicalFromHash(&canonical, XXH3_128bits(bytes.data(), bytes.size()));
    std::string text;
    for (const unsigned char byte : canonical.digest) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

} // namespace tool
