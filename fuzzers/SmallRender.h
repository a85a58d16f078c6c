// A small render of whatever assembly, through the engine's C interface and under its rules.
#pragma once

#include "embedded/program/Program.h"
#include "fuzzers/Fuzzing.h"

#include <array>
#include <map>

namespace fuzzing {

// Sides of at most 8 pixels where inputs decide about the size.
constexpr int smallLog2Width = 3;
constexpr int smallLog2Height = 2;

// All outputs of a program, by index.
std::vector<std::size_t> allOutputs(const embedded::Program& program);

// Whether computing them is quick enough for a fuzzer, when inputs ask for the small size.
bool isCheap(const embedded::Program& program);

// Of the inputs that decide about the size of any node, by index: the value that makes it small.
using InputSizes = std::map<std::size_t, std::array<std::int32_t, 4>>;
InputSizes smallSizes(const embedded::Program& program);

// Ends the process when the engine and the verifier disagree about the assembly, or the engine breaks a rule
// of its interface while it renders all outputs twice, the second time with chosen input values. Whether the
// engine took the assembly.
bool renderSmall(const void* assembly, std::size_t size, Choices& values);

} // namespace fuzzing
