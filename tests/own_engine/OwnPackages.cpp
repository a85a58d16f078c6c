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

std::string withFreshUids(std::string xml) {
    const unsigned int first = freshUids(10);
    for (std::size_t at = 0; (at = xml.find('#', at)) != std::string::npos;)
        xml.replace(at, 2, std::to_string(first + static_cast<unsigned int>(xml[at + 1] - '0')));
    return xml;
}

void beginTest() {}

std::string faults() {
    return "";
}

} // namespace packages
