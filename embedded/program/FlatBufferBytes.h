// What the readers of our FlatBuffers files share.
#pragma once

#include <flatbuffers/flatbuffers.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace embedded {

// Larger data is refused before FlatBuffers, which asserts on it, sees it.
constexpr std::size_t maxFileSize = std::size_t{1} << 30;

// Files are flat; their readers follow references no deeper than this.
constexpr flatbuffers::uoffset_t maxTableDepth = 8;

// Tables could be shared, so that a small file made a reader visit very many of them. Ours are not: each
// takes a reference and the start of a table.
constexpr std::size_t maxTableVisits = 2000000;
constexpr std::size_t fewestBytesOfTable = 8;

// A copy, because FlatBuffers needs alignment. Empty for data that cannot be a file.
inline std::vector<unsigned char> alignedCopy(const void* data, std::size_t size) {
    if (!data || size > maxFileSize) return {};
    const auto* bytes = static_cast<const unsigned char*>(data);
    return {bytes, bytes + size};
}

inline std::vector<unsigned char> finishedBytes(const flatbuffers::FlatBufferBuilder& builder) {
    return {builder.GetBufferPointer(), builder.GetBufferPointer() + builder.GetSize()};
}

// The root table, or null when the bytes are no file of this type. Fields that the schema requires are there.
template <typename Table>
const Table* verifiedRoot(const std::vector<unsigned char>& file, const char* identifier) {
    if (file.empty()) return nullptr;
    const auto visits = std::min(maxTableVisits, 1 + file.size() / fewestBytesOfTable);
    flatbuffers::Verifier verifier(file.data(), file.size(), maxTableDepth,
                                   static_cast<flatbuffers::uoffset_t>(visits));
    return verifier.VerifyBuffer<Table>(identifier) ? flatbuffers::GetRoot<Table>(file.data()) : nullptr;
}

} // namespace embedded
