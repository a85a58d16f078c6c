#include "embedded/engine/ImageKey.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace embedded {

ImageKey keyOf(const std::vector<unsigned char>& bytes) {
    const XXH128_hash_t hash = XXH3_128bits(bytes.data(), bytes.size());
    return {hash.low64, hash.high64};
}

} // namespace embedded
