#include "embedded/engine/InputValues.h"

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

} // namespace embedded
