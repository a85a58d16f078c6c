#include "embedded/engine/InputValues.h"

#include <algorithm>

namespace embedded {

InputValues defaultValues(const Program& program) {
    InputValues inputs;
    for (const ProgramInput& input : program.inputs) inputs.values.push_back(input.defaultValue);
    inputs.images.resize(program.inputs.size());
    return inputs;
}

Value resolveBinding(const Binding& binding, ValueType type, const InputValues& inputs) {
    if (binding.input == Binding::constantOnly) return binding.constant;
    const Value& given = inputs.values[static_cast<std::size_t>(binding.input)];
    const int givenCount = componentCount(given.type);
    const int count = componentCount(type);
    Value result;
    result.type = type;
    for (int i = 0; i < count; ++i) {
        const auto to = static_cast<std::size_t>(i);
        const auto from = static_cast<std::size_t>(givenCount == 1 ? 0 : i);
        if (isInteger(type)) {
            result.integers[to] = given.integers[from];
        } else if (i >= givenCount && givenCount > 1) {
            result.floats[to] = 1.0f;
        } else {
            const float component =
                isInteger(given.type) ? static_cast<float>(given.integers[from]) : given.floats[from];
            result.floats[to] = component * binding.scale + binding.offset;
        }
    }
    return result;
}

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
