// Typed parameter values of the embedded engine's programs.
#pragma once

#include <array>
#include <cstdint>

namespace embedded {

// The codes are those of the engine's C interface.
enum class ValueType : std::uint32_t {
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

constexpr bool isValueType(std::uint32_t code) {
    return code <= 10 && code != 6 && code != 7;
}

constexpr bool isInteger(ValueType type) {
    return type == ValueType::Integer || static_cast<std::uint32_t>(type) >= 8;
}

// 1 to 4; 0 for an image.
constexpr int componentCount(ValueType type) {
    const auto code = static_cast<std::uint32_t>(type);
    if (type == ValueType::Image) return 0;
    return code < 4 ? static_cast<int>(code) + 1 : code == 4 ? 1 : static_cast<int>(code) - 6;
}

// The array that the type names holds the components; what lies behind them is zero.
struct Value {
    ValueType type = ValueType::Float;
    std::array<float, 4> floats{};
    std::array<std::int32_t, 4> integers{};
};

} // namespace embedded
