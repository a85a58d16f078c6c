// Short ways to write the parameter records of node kinds.
#pragma once

#include "embedded/nodes/NodeKind.h"

#include <limits>

namespace embedded {

// The same default in each component.
inline ParameterInfo number(const char* name, ValueType type, double defaultValue, double minimum,
                            double maximum, const char* summary) {
    return {name, type,   {defaultValue, defaultValue, defaultValue, defaultValue}, minimum, maximum,
            {},   summary};
}

inline ParameterInfo choice(const char* name, std::vector<const char*> names, int defaultValue,
                            const char* summary) {
    const double last = static_cast<double>(names.size()) - 1;
    const double value = defaultValue;
    return {name, ValueType::Integer, {value, value, value, value}, 0, last, std::move(names), summary};
}

inline ParameterInfo colour(const char* name, std::array<double, 4> defaultValue, const char* summary) {
    return {name, ValueType::Float4, defaultValue, -16, 16, {}, summary};
}

// The engine adds the seed of the node's binding to this parameter.
inline ParameterInfo seedParameter() {
    return number("seed", ValueType::Integer, 0, std::numeric_limits<std::int32_t>::min(),
                  std::numeric_limits<std::int32_t>::max(), "varies what is random");
}

// For colours that are given as parameters.
inline ParameterInfo encodingParameter() {
    return choice("encoding", {"linear", "srgb"}, 0,
                  "how the given colours are encoded; images hold linear colours");
}

} // namespace embedded
