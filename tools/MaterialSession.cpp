#include "tools/MaterialSession.h"

#include "bridge/Bridge.h"
#include "tools/Failure.h"

#include <algorithm>

namespace tool {

MaterialSession::MaterialSession(const kv::vector<char>& bottom, const kv::vector<char>& top)
    : held(kvSubstance::createSubstance(bottom, top)) {
    if (!held || held->getGraphInstances().empty())
        throw Failure("the library makes no material of these packages");
}

std::optional<Texture> MaterialSession::render() {
    const kv::TempReference<ilSIDImage> image = kvSubstance::getTextureFromSubstance(held.get());
    if (!image || !image->getBytes()) return std::nullopt;
    const ilSize size = image->getSize();
    Texture texture(size.x, size.y, 4, 1, false);
    std::copy_n(image->getBytes(), texture.samples.size(), texture.samples.begin());
    return texture;
}

} // namespace tool
