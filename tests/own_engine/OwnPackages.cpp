// The example's packages are descriptions and nothing else.
#include "tests/Packages.h"

#include <utility>

namespace packages {

std::string bytes(const std::string& descriptionXml, const std::string& /*tag*/) {
    return descriptionXml;
}

unsigned int freshUids(unsigned int count) {
    static unsigned int next = 100;
    return std::exchange(next, next + count);
}

void beginTest() {}

std::string faults() {
    return "";
}

} // namespace packages
