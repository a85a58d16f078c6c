// What the fuzz targets share: taking an input apart, and saying what has to hold.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

// The one function of a target. Returns 0; ends the process when something that always holds does not.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzzing {

using Bytes = std::vector<unsigned char>;

inline void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

// Decisions from the bytes of an input, front to back. Behind the end all bytes are zero.
class Choices {
public:
    Choices(const std::uint8_t* data, std::size_t size)
        : bytes_(data, data + size) {}

    // From the end of an input whose front is something else.
    static Choices backwards(const std::uint8_t* data, std::size_t size) {
        Choices choices(data, size);
        std::reverse(choices.bytes_.begin(), choices.bytes_.end());
        choices.bytes_.resize(std::min(size, std::size_t{256}));
        return choices;
    }

    bool empty() const { return next_ == bytes_.size(); }
    unsigned byte() { return empty() ? 0 : bytes_[next_++]; }
    unsigned below(std::size_t count) { return byte() % static_cast<unsigned>(count); } // at most 256

    // The bytes of a value, whatever they mean.
    template <class T>
    T raw() {
        T value{};
        const std::size_t count = std::min(bytes_.size() - next_, sizeof(T));
        if (count > 0) std::memcpy(static_cast<void*>(&value), bytes_.data() + next_, count);
        next_ += count;
        return value;
    }

    // Up to a zero byte, which is taken too, or up to the end: texts are passed to the library as C strings.
    std::string text() {
        const auto begin = bytes_.begin() + static_cast<std::ptrdiff_t>(next_);
        const std::string taken(begin, std::find(begin, bytes_.end(), 0));
        next_ = std::min(next_ + taken.size() + 1, bytes_.size());
        return taken;
    }

private:
    Bytes bytes_;
    std::size_t next_ = 0;
};

} // namespace fuzzing
