// What a host does with a material, in few words.
#pragma once

#include "bridge/Bridge.h"

#include <string>

namespace hosting {

using Material = kv::Reference<kvSubstance::Substance>;
using Image = kv::TempReference<ilSIDImage>;

inline kv::vector<char> content(const std::string& bytes) {
    return kv::vector<char>(bytes.begin(), bytes.end());
}

// Sets the first component and hands it on. Materials that were made of the wrong packages lack inputs.
inline void setValue(const Material& material, const char* identifier, float value) {
    kvSubstance::SubstanceInput* const input = material->getInput(identifier);
    if (!input) return;
    if (input->getType() & 0x20)
        input->setValueI(static_cast<int>(value), 0);
    else
        input->setValueF(value, 0);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, input);
}

inline Image render(const Material& material) {
    return kvSubstance::getTextureFromSubstance(material.get());
}

// RGBA, row by row.
inline std::string pixels(const Image& image) {
    if (!image) return "";
    const ilSize size = image->getSize();
    return {reinterpret_cast<const char*>(image->getBytes()), static_cast<size_t>(size.x) * size.y * 4};
}

} // namespace hosting
