// Packages of one graph.
#pragma once

#include "tests/Hosting.h"
#include "tests/Packages.h"

#include <initializer_list>
#include <string>

namespace kvSubstance {

// The start of an "input" element whose uid nobody else has.
inline std::string inputTag(const std::string& identifier, int type, const std::string& defaultValue) {
    return "<input uid='" + std::to_string(packages::freshUids(1)) + "' identifier='" + identifier +
           "' type='" + std::to_string(type) + "' default='" + defaultValue + "' ";
}

inline std::string outputTag(unsigned int uid, const std::string& identifier) {
    return "<output uid='" + std::to_string(uid) + "' identifier='" + identifier + "' mipmaps='1'/>";
}

// A package of one graph, with the "output" and "input" elements given.
inline kv::vector<char> packageOf(const std::string& tag, const std::string& outputs,
                                  const std::string& inputs) {
    const std::string description =
        packages::descriptionOf(std::to_string(packages::freshUids(1)), "pkg:/" + tag,
                                "<outputs>" + outputs + "</outputs><inputs>" + inputs + "</inputs>");
    return hosting::content(packages::bytes(description, tag));
}

// A bottom of one output without inputs.
inline kv::vector<char> plainPackage() {
    return packageOf("bottom", outputTag(packages::freshUids(1), "x"), "");
}

// A material whose outputs have these identifiers, in the order of their uids.
inline kv::Reference<Substance> materialWith(std::initializer_list<const char*> identifiers) {
    std::string outputs;
    for (const char* const identifier : identifiers) outputs += outputTag(packages::freshUids(1), identifier);
    return createSubstance(plainPackage(), packageOf("top", outputs, ""));
}

} // namespace kvSubstance
