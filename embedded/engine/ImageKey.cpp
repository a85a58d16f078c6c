#include "embedded/engine/ImageKey.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <array>
#include <random>

namespace embedded {

namespace {

using Secret = std::array<std::uint32_t, XXH_SECRET_DEFAULT_SIZE / sizeof(std::uint32_t)>;

Secret drawSecret() {
    std::random_device random;
    Secret drawn;
    for (std::uint32_t& word : drawn) word = random();
    return drawn;
}

} // namespace

ImageKey keyOf(const std::vector<unsigned char>& bytes) {
    static const Secret secret = drawSecret();
    const XXH128_hash_t hash =
        XXH3_128bits_withSecret(bytes.data(), bytes.size(), secret.data(), sizeof secret);
    return {hash.low64, hash.high64};
}

} // namespace embedded
