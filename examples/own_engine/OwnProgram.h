// The tiny program that the own linker makes and the own engine runs.
//
// Each output is a mixture of its sources: numbers become gradients, images are sampled. The form that
// crosses the C interface (the "assembly") is text, so that it can be read while one learns:
//
//     own-program 2 1
//     101 1 0 1056964608 1073741824 0 0
//     103 5 0 0 0 0 0
//     201 0 1 2 0 1
//     end
//
// First the numbers of inputs and outputs. An input has its uid, its type, whether it is the resolution, and
// the bits of its default; an output its uid, format, mipmaps, the number of its sources, and these.
#pragma once

#include "platform/engine.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace own {

using Words = std::array<std::uint32_t, 4>; // the bits of up to four floats or integers

struct Input {
    std::uint32_t uid = 0;
    int type = SubstanceInputFloat;
    bool isResolution = false; // base-2 logarithms of width and height
    Words value{};
    unsigned int push = 0; // which package of a stack it came with; only the linker asks
};

struct Output {
    std::uint32_t uid = 0;
    int format = SubstanceFormatRgba8;
    unsigned int mipmaps = 1;
    std::vector<int> sources; // i: the input i; -1 - k: the output k, which stands before this one
    unsigned int push = 0;
};

struct Program {
    std::vector<Input> inputs;
    std::vector<Output> outputs;
};

constexpr std::size_t maxPorts = 4096; // inputs, and outputs, of a program

// 0 for what is no type.
int componentCount(int type);
bool isInteger(int type);
bool isFormat(int format);

std::string write(const Program& program);

// Nothing unless the bytes are a whole program that can be run: all doubts end here.
std::optional<Program> read(const void* data, std::size_t size);

// The status of a function that is true for success: no exception leaves the C functions.
template <typename Function>
unsigned int guarded(Function function) noexcept {
    try {
        return function() ? 0 : 1;
    } catch (...) {
        return 1;
    }
}

} // namespace own
