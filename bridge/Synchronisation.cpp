#include "bridge/Synchronisation.h"

#include "bridge/InputInstances.h"
#include "framework/render/GraphInstance.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace kvSubstance {

namespace {

using SubstanceAir::InputInstanceBase;
namespace Math = SubstanceAir::Math;

// Two graphs of a stack may name an input alike and mean different types: the cast is safe only after a look
// at the instance's own.
template <class T>
void store(const SubstanceInput::IntOrFloat& values, InputInstanceBase& instance, unsigned int type) {
    if (instance.desc.type != type) return;
    static_assert(std::is_trivially_copyable<T>::value && sizeof(T) <= sizeof(values), "raw components");
    T value;
    std::memcpy(static_cast<void*>(&value), &values, sizeof(T));
    static_cast<SubstanceAir::InputInstanceNumerical<T>&>(instance).setValue(value);
}

SubstanceInput::IntOrFloat valueOf(const SubstanceInput& input) {
    SubstanceInput::IntOrFloat values{};
    const int count = std::clamp(input.getType() & 7, 1, 4);
    if (input.getType() & 0x20) {
        for (int k = 0; k < count; ++k) values.i[k] = input.getValueI(k);
    } else {
        for (int k = 0; k < count; ++k) values.f[k] = input.getValueF(k);
    }
    return values;
}

SubstanceInput* findByIndexIdentifier(const Substance& material, const kvString::CString& indexIdentifier) {
    for (const kvString::CString& identifier : material.getInputIds()) {
        SubstanceInput* const input = material.getInput(identifier);
        if (!input || !input->showInGUI()) continue;
        for (int k = 0; k < (input->getType() & 7); ++k) {
            if (input->getIndexIdentifier(k) == indexIdentifier) return input;
        }
    }
    return nullptr;
}

} // namespace

// A type without a component count (16, 32) means one component: on purpose, hosts make such inputs.
void syncValueFromSubstanceInputToInputInstanceBase(const SubstanceInput* input,
                                                    InputInstanceBase* instance) {
    if (!input || !instance) return;
    const SubstanceInput::IntOrFloat values = valueOf(*input);
    switch (static_cast<int>(input->getType())) {
    case 0x10:
    case TypeFloat1:
        return store<float>(values, *instance, SubstanceAir::Float);
    case TypeFloat2:
        return store<Math::Vector2<float>>(values, *instance, SubstanceAir::Float2);
    case TypeFloat3:
        return store<Math::Vector3<float>>(values, *instance, SubstanceAir::Float3);
    case TypeFloat4:
        return store<Math::Vector4<float>>(values, *instance, SubstanceAir::Float4);
    case 0x20:
    case TypeInt1:
        return store<int>(values, *instance, SubstanceAir::Integer);
    case TypeInt2:
        return store<Math::Vector2<int>>(values, *instance, SubstanceAir::Integer2);
    case TypeInt3:
        return store<Math::Vector3<int>>(values, *instance, SubstanceAir::Integer3);
    case TypeInt4:
        return store<Math::Vector4<int>>(values, *instance, SubstanceAir::Integer4);
    default:
        return;
    }
}

InputInstanceBase* findInputInstance(Substance& material, const SubstanceInput& input) {
    const std::string_view identifier(input.getIdentifier().asChar(), input.getIdentifier().length());
    for (const auto& graph : material.getGraphInstances())
        if (InputInstanceBase* const instance = graph->findInput(identifier)) return instance;
    return nullptr;
}

// The material is held by the parameter until the call returns.
void syncValueFromSubstanceInputToInputInstanceBase(kv::Reference<Substance> material,
                                                    SubstanceInput* input) {
    if (material && input)
        syncValueFromSubstanceInputToInputInstanceBase(input, findInputInstance(*material, *input));
}

void syncValueFromSubstanceInputToInputInstanceBase(kv::Reference<Substance> material,
                                                    const kvString::CString& indexIdentifier) {
    if (!material) return;
    SubstanceInput* const input = findByIndexIdentifier(*material, indexIdentifier);
    if (input) syncValueFromSubstanceInputToInputInstanceBase(material, input);
}

} // namespace kvSubstance
