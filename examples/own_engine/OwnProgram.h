// What the own linker makes and the own engine runs: a program, its one format, and what it looks like.
//
// A package is a description text, as the library reads it, and nothing else, because this engine needs to
// know no more than what alters what. So a package is written with an editor; see stripes.xml and
// varnish.xml. The form that crosses the C interface (the "assembly") is such a text again, so that it can be
// read while one learns:
//
//     <sbsdescription><graphs><graph>
//         <outputs><output uid='201' format='0' mipmaps='1'/></outputs>
//         <inputs><input uid='101' type='0' default='0.5 0 0 0 ' alteroutputs='201 '/></inputs>
//     </graph></graphs></sbsdescription>
#pragma once

#include "platform/engine.h"
#include "platform/linker.h"

#include <array>
#include <map>
#include <new>
#include <set>
#include <string>

namespace own {

using Value = std::array<float, 4>; // up to four numbers, also integers; or a colour of an image
using Uids = std::set<unsigned int>;

struct Input {
    int type = SubstanceInputFloat;
    Uids alters;           // of outputs; those that there are not do no harm
    unsigned int push = 0; // which package of a stack it came with; only the linker asks, here and below
    Value value{};
};

struct Output {
    int format = SubstanceFormatRgba8;
    unsigned int mipmaps = 1;
    unsigned int push = 0;
};

// By uids; indices count in their order. Of packages that share a uid the first one keeps it.
struct Program {
    std::map<unsigned int, Input> inputs;
    std::map<unsigned int, Output> outputs;
};

std::string write(const Program& program);

// Throws std::invalid_argument for what is no description: bytes come from files, and all doubts about them
// end here.
Program read(const void* data, std::size_t size, unsigned int push = 0);

// The texture of an output, in a buffer for delete[]: 64 x 64 texels of one colour, the sum of all that
// alters the output. Numbers are red, green and blue from 0 to 1; an image counts with its first texel.
SubstanceTexture paint(const Program& program, unsigned int outputUid);

// How many numbers a value has; 0 for what is no type.
inline std::size_t componentCount(int type) {
    constexpr std::size_t counts[] = {1, 2, 3, 4, 1, 4, 0, 0, 2, 3, 4};
    return type >= SubstanceInputFloat && type <= SubstanceInputInteger4 ? counts[type] : 0;
}

inline bool isFormat(int format) {
    return format == SubstanceFormatRgba8 || format == SubstanceFormatSrgb;
}

// Null where there is none.
template <typename Ports>
auto find(Ports& ports, unsigned int uid) {
    const auto found = ports.find(uid);
    return found == ports.end() ? nullptr : &found->second;
}

// Sets an out-parameter before anything can fail. False when there is none.
template <typename Type>
bool clear(Type* out) {
    if (out) *out = {};
    return out;
}

// The status of what may throw: no exception leaves the C functions. Of a linker the library wants to know
// when memory ran out; of an engine any status but 0 is a failure.
template <typename Function>
unsigned int guarded(const Function& function) noexcept {
    try {
        function();
        return 0;
    } catch (const std::bad_alloc&) {
        return SubstanceLinkerOutOfMemory;
    } catch (...) {
        return 1;
    }
}

} // namespace own
