// Which instruction sets the row functions use. All of them give the same bytes; the larger ones are faster.
#pragma once

#include <optional>
#include <string_view>

namespace embedded {

// In the order of their size. Baseline is what every machine of the architecture has.
enum class InstructionSet { Baseline = 0, Avx2 = 1, Avx512 = 2 };

constexpr int instructionSetCount = 3;

// "baseline", "avx2" or "avx512".
const char* nameOf(InstructionSet set);
std::optional<InstructionSet> findInstructionSet(std::string_view name);

// The largest one that the library was built with and this machine has.
InstructionSet bestInstructionSet();

// The one in use: the best one, or a smaller one that the environment variable
// KVSUBSTANCE_INSTRUCTION_SET names, or that was forced. Safe from any thread.
InstructionSet instructionSet();

// For tests and benchmarks; no more than the best one comes into use. Nodes that are prepared later use it.
void forceInstructionSet(InstructionSet set);

} // namespace embedded
