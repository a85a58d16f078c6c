#include "tests/Packages.h"
#include "tests/recording/Recording.h"

#include <utility>

namespace packages {

std::string bytes(const std::string& descriptionXml, const std::string& tag) {
    return recording::packageBytes(descriptionXml, tag);
}

unsigned int freshUids(unsigned int count) {
    return recording::freshUids(count);
}

std::string withFreshUids(std::string xml) {
    return recording::withFreshUids(std::move(xml));
}

void beginTest() {
    recording::reset();
}

std::string faults() {
    const unsigned int textures = recording::liveTextures();
    return recording::misuses() + (textures > 0 ? std::to_string(textures) + " live textures\n" : "");
}

} // namespace packages
