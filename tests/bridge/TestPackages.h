// Packages of one graph.
#pragma once

#include "bridge/Bridge.h"
#include "tests/Packages.h"

#include <string>

namespace kvSubstance {

// The start of an "input" element whose uid nobody else has.
inline std::string inputTag(const std::string& identifier, int type, const std::string& defaultValue) {
    return "<input uid='" + std::to_string(packages::freshUids(1)) + "' identifier='" + identifier +
           "' type='" + std::to_string(type) + "' default='" + defaultValue + "' ";
}

inline std::string outputTag(unsigned int uid, const std::string& identifier, int format = 0) {
    return "<output uid='" + std::to_string(uid) + "' identifier='" + identifier + "' format='" +
           std::to_string(format) + "' mipmaps='1'/>";
}

// A package of one graph, with the "output" and "input" elements given.
inline kv::vector<char> packageOf(const std::string& tag, const std::string& outputs,
                                  const std::string& inputs) {
    const std::string bytes = packages::bytes(
        "<sbsdescription asmuid='" + std::to_string(packages::freshUids(1)) +
            "'><graphs count='1'><graph pkgurl='pkg:/" + tag + "' label='" + tag + "'><outputs>" + outputs +
            "</outputs><inputs>" + inputs + "</inputs></graph></graphs></sbsdescription>",
        tag);
    return kv::vector<char>(bytes.begin(), bytes.end());
}

// A bottom of one output without inputs.
inline kv::vector<char> plainPackage() {
    return packageOf("bottom", outputTag(packages::freshUids(1), "x"), "");
}

} // namespace kvSubstance
