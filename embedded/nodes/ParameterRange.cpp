#include "embedded/nodes/ParameterRange.h"

#include <algorithm>

namespace embedded {

Value withinRange(Value value, const ParameterInfo& parameter) {
    const auto bounded = [&](double component) {
        if (!(component >= parameter.minimum)) return parameter.minimum;
        return std::min(component, parameter.maximum);
    };
    for (std::size_t i = 0; i < static_cast<std::size_t>(componentCount(value.type)); ++i) {
        if (isInteger(value.type)) {
            value.integers[i] = static_cast<std::int32_t>(bounded(value.integers[i]));
        } else {
            value.floats[i] = static_cast<float>(bounded(static_cast<double>(value.floats[i])));
        }
    }
    return value;
}

} // namespace embedded
