// Whether the outputs of a program tile: whether their textures can be laid side by side without a seam.
#pragma once

#include "embedded/program/Program.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace embedded {

// A node whose result may not tile although its sources do, and the parameter by which.
struct SeamCause {
    std::int32_t node;     // index into Program::nodes
    const char* parameter; // name
};

struct OutputSeams {
    // The first such node that the output depends on. Without one the output tiles, whatever the values of
    // inputs, as long as the images that it depends on do.
    std::optional<SeamCause> cause;
    std::vector<std::int32_t> images; // indexes into Program::inputs, ascending
};

// One for each output, in their order. The program holds to the rules of Verifier.h.
std::vector<OutputSeams> findSeams(const Program& program);

} // namespace embedded
