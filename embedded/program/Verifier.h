// The rules that every program holds to, in one place for the compiler, the linker and the engine.
#pragma once

#include "embedded/program/Program.h"

#include <cstddef>
#include <string>
#include <vector>

namespace embedded {

constexpr std::size_t maxProgramInputs = 4096;
constexpr std::size_t maxProgramNodes = 16384;
constexpr std::size_t maxProgramOutputs = 4096;
constexpr std::size_t maxNodePorts = 32;
constexpr std::size_t maxNodeParameters = 64;
constexpr std::uint32_t maxMipmaps = 15;   // from 16384 texels down to 1
constexpr std::int32_t maxResolution = 14; // base-2 logarithm of a side

// One breach of a rule. The place is words such as "node 3 (blend), parameter opacity".
struct ProgramProblem {
    std::string place;
    std::string reason;
};

// Whether an input of the one type may drive a parameter of the other; see Binding.
bool canDrive(ValueType input, ValueType parameter);

// Empty for a sound program. The list ends after a hundred problems.
std::vector<ProgramProblem> verify(const Program& program);

} // namespace embedded
