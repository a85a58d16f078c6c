// The value types of graph inputs, by the codes that descriptions and the engine use.
#pragma once

namespace SubstanceAir {

enum InputType : unsigned int {
    Float = 0,
    Float2 = 1,
    Float3 = 2,
    Float4 = 3,
    Integer = 4,
    Image = 5,
    Integer2 = 8,
    Integer3 = 9,
    Integer4 = 10,
};

// The code that presets record for an input they cannot tell the type of.
constexpr unsigned int UnknownInputType = 0xFFFF;

} // namespace SubstanceAir
