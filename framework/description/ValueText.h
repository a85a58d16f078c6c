// Values of inputs from text: one whole number, or as many as a vector has components with "," between them.
#pragma once

#include "framework/description/MathVectors.h"
#include "support/Numbers.h"

#include <array>
#include <string_view>

namespace SubstanceAir {

// False, and the value stays as it is, for a text that is not exactly one value of the type.
template <class T>
bool valueFromText(std::string_view text, T& value) {
    return support::convertWhole(text, value);
}

template <class T>
bool valueFromText(std::string_view text, Math::Vector2<T>& value) {
    std::array<T, 2> components{};
    if (!support::convertWhole(text, components)) return false;
    value = {components[0], components[1]};
    return true;
}

template <class T>
bool valueFromText(std::string_view text, Math::Vector3<T>& value) {
    std::array<T, 3> components{};
    if (!support::convertWhole(text, components)) return false;
    value = {components[0], components[1], components[2]};
    return true;
}

template <class T>
bool valueFromText(std::string_view text, Math::Vector4<T>& value) {
    std::array<T, 4> components{};
    if (!support::convertWhole(text, components)) return false;
    value = {components[0], components[1], components[2], components[3]};
    return true;
}

} // namespace SubstanceAir
