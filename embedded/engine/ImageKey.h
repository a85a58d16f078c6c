// What an image was computed from, in 128 bits: images of equal keys are equal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace embedded {

struct ImageKey {
    std::uint64_t low = 0;
    std::uint64_t high = 0;

    friend bool operator==(const ImageKey& a, const ImageKey& b) {
        return a.low == b.low && a.high == b.high;
    }
    friend bool operator<(const ImageKey& a, const ImageKey& b) {
        return a.high != b.high ? a.high < b.high : a.low < b.low;
    }
};

// The XXH3 hash of these bytes under a secret of the process: with 128 bits, two among a billion images have
// the same key once in 10^20 programs, and no program can be written so that two of its images have. Keys of
// other processes are others.
ImageKey keyOf(const std::vector<unsigned char>& bytes);

} // namespace embedded
