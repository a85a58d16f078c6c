#include "embedded/compiler/Uid.h"

namespace embedded {

// FNV-1a (G. Fowler, L. C. Noll, K.-P. Vo) with 32 bits, over the words joined by line feeds.
std::uint32_t deriveUid(const std::vector<std::string_view>& words) {
    std::uint32_t hash = 2166136261u;
    const auto add = [&](char c) { hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u; };
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i != 0) add('\n');
        for (const char c : words[i]) add(c);
    }
    return hash == 0 ? 1 : hash;
}

} // namespace embedded
