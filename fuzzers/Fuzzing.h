// What the fuzz targets share: taking an input apart, and saying what has to hold.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>

// The one function of a target. Returns 0; ends the process when something that always holds does not.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzzing {

inline void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

// Decisions from the bytes of an input, front to back. Behind the end all bytes are zero.
class Choices {
public:
    Choices(const std::uint8_t* data, std::size_t size)
        : next_(data)
        , left_(size) {}

    bool empty() const { return left_ == 0; }
    std::size_t left() const { return left_; }

    unsigned byte() {
        if (left_ == 0) return 0;
        --left_;
        return *next_++;
    }
    unsigned below(unsigned count) { return count == 0 ? 0 : byte() % count; } // count: at most 256

    // The bytes of a value, whatever they mean.
    template <class T>
    T raw() {
        static_assert(std::is_trivially_copyable<T>::value, "made of bytes");
        T value{};
        const std::size_t count = left_ < sizeof(T) ? left_ : sizeof(T);
        if (count > 0) std::memcpy(static_cast<void*>(&value), next_, count);
        next_ += count;
        left_ -= count;
        return value;
    }

    // Up to the separator, which is taken too, or up to the end.
    std::string textUpTo(char separator) {
        std::string text;
        while (left_ > 0) {
            const char each = static_cast<char>(byte());
            if (each == separator) break;
            text += each;
        }
        return text;
    }

private:
    const std::uint8_t* next_;
    std::size_t left_;
};

// Texts are passed to the library as C strings: what follows a zero byte is not part of them.
inline std::string textOf(const std::uint8_t* data, std::size_t size) {
    return Choices(data, size).textUpTo('\0');
}

// Reads memory so that the sanitizers see it.
inline unsigned readAll(const void* data, std::size_t size) {
    const auto* const bytes = static_cast<const unsigned char*>(data);
    unsigned sum = 0;
    for (std::size_t i = 0; i < size; ++i) sum = sum * 31 + bytes[i];
    volatile unsigned seen = sum; // not optimised away
    return seen;
}

} // namespace fuzzing
