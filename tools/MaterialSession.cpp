#include "tools/MaterialSession.h"

#include "bridge/Bridge.h"
#include "tools/Failure.h"

#include <algorithm>

namespace tool {

MaterialSession::MaterialSession(const kv::vector<char>& bottom, const kv::vector<char>& top)
    : held(kvSubstance::createSubstance(bottom, top)) {
    if (!held) throw Failure("the library makes no material of these packages");
}

bool MaterialSession::setResolution(int widthExponent, int heightExponent) {
    kvSubstance::SubstanceInput* const input = held->getInput("$resolution");
    if (!input || input->getType() != kvSubstance::TypeInt2) return false;
    input->setValue2I(widthExponent, heightExponent);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(held, input);
    return true;
}

std::optional<Picture> MaterialSession::render() {
    const kv::TempReference<ilSIDImage> image = kvSubstance::getTextureFromSubstance(held.get());
    if (!image || !image->getBytes()) return std::nullopt;
    const ilSize size = image->getSize();
    Picture picture(size.x, size.y);
    std::copy_n(image->getBytes(), picture.rgba.size(), picture.rgba.begin());
    return picture;
}

} // namespace tool
