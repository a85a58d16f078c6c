// A graph program in memory, as a value: what the compiler makes, the linker joins and the engine runs. Its
// byte form is the assembly (see Assembly.h); its rules are in Verifier.h.
#pragma once

#include "embedded/nodes/Value.h"

#include <cstdint>
#include <vector>

namespace embedded {

// Inputs that the engine itself understands; all others only drive parameters.
enum class SystemInput : std::uint8_t {
    None = 0,
    Resolution = 1, // Integer2: log2 of width and height in pixels, clamped to 0 to 14
    Seed = 2,       // Integer
};

struct ProgramInput {
    std::uint32_t uid = 0;
    ValueType type = ValueType::Float;
    SystemInput role = SystemInput::None;
    Value defaultValue;
};

// Where a parameter's value comes from: a constant, or an input. An input's components become the
// parameter's: equal counts one to one, one component repeated, three to four with a fourth of 1; integers
// may drive floats, not the other way. Float parameters then take value * scale + offset in each component
// (the added fourth component excepted).
struct Binding {
    static constexpr std::int32_t constantOnly = -1;
    std::int32_t input = constantOnly; // index into Program::inputs
    Value constant;
    float scale = 1.0f;
    float offset = 0.0f;
};

struct ProgramNode {
    static constexpr std::int32_t unconnected = -1;
    std::uint32_t kind = 0;            // code of a NodeKind
    std::vector<std::int32_t> sources; // one for each port: an earlier node's index, or unconnected
    std::vector<Binding> parameters;   // one for each parameter of the kind, in its order
    Binding resolution;                // Integer2, as SystemInput::Resolution
    Binding seed;                      // Integer, added to the node's own seed parameter
};

struct ProgramOutput {
    std::uint32_t uid = 0;
    std::int32_t node = 0; // index into Program::nodes
    std::int32_t format = 0;
    std::uint32_t mipmaps = 0; // levels; 0 and 1 both mean the full-size level only
};

// Nodes stand in an order in which sources come first, so a program cannot be cyclic. Uids of inputs and
// outputs may repeat; the engine goes by the first one. Where programs are linked that share uids, as those
// of a graph stacked on itself do, the linker lets inputs of one uid and type become one, and keeps the last
// output of a uid, the one on top of the stack. So what it links repeats a uid only among inputs of different
// types.
struct Program {
    std::uint32_t uid = 0;
    std::vector<ProgramInput> inputs;
    std::vector<ProgramNode> nodes;
    std::vector<ProgramOutput> outputs;
};

} // namespace embedded
