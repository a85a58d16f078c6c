// Assemblies: programs as bytes. What the linker delivers and the engine runs.
#pragma once

#include "embedded/program/Program.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace embedded {

// Constants of parameters that an input drives are not kept. The program must hold to the rules of
// Verifier.h.
std::vector<unsigned char> encodeAssembly(const Program& program);

// Nothing for bytes that are no assembly, or whose program the verifier refuses. Safe for any bytes, at any
// alignment.
std::optional<Program> decodeAssembly(const void* data, std::size_t size);

} // namespace embedded
