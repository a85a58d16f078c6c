#include "framework/description/InputDesc.h"

#include "framework/render/InputInstance.h"

#include <algorithm>

namespace SubstanceAir {

template <class T>
std::unique_ptr<InputDescBase> InputDescNumerical<T>::clone() const {
    return std::make_unique<InputDescNumerical>(*this);
}

template <class T>
std::unique_ptr<InputInstanceBase> InputDescNumerical<T>::instantiate(GraphInstance& parent) const {
    return std::make_unique<InputInstanceNumerical<T>>(*this, parent);
}

template struct InputDescNumerical<float>;
template struct InputDescNumerical<Math::Vector2<float>>;
template struct InputDescNumerical<Math::Vector3<float>>;
template struct InputDescNumerical<Math::Vector4<float>>;
template struct InputDescNumerical<int>;
template struct InputDescNumerical<Math::Vector2<int>>;
template struct InputDescNumerical<Math::Vector3<int>>;
template struct InputDescNumerical<Math::Vector4<int>>;

std::unique_ptr<InputDescBase> InputDescImage::clone() const {
    return std::make_unique<InputDescImage>(*this);
}

std::unique_ptr<InputInstanceBase> InputDescImage::instantiate(GraphInstance& parent) const {
    return std::make_unique<InputInstanceImage>(*this, parent);
}

const InputDescBase* findInput(const std::vector<std::unique_ptr<InputDescBase>>& inputs, unsigned int uid) {
    const auto hasLowerUid = [](const auto& input, unsigned int key) { return input->uid < key; };
    const auto found = std::lower_bound(inputs.begin(), inputs.end(), uid, hasLowerUid);
    return found != inputs.end() && (*found)->uid == uid ? found->get() : nullptr;
}

} // namespace SubstanceAir
