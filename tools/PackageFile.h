// A package file: its bytes, for the library to make a material of, and what it says about itself.
#pragma once

#include "framework/description/GraphDesc.h"
#include "platform/base.h"

#include <string>
#include <vector>

namespace tool {

struct PackageFile {
    std::string name; // the file's, as the person gave it
    kv::vector<char> bytes;
    unsigned int uid = 0;
    std::vector<SubstanceAir::GraphDesc> graphs; // at least one; with their presets, without parents

    // The graph that materials are made of.
    const SubstanceAir::GraphDesc& graph() const { return graphs.front(); }
};

// Throw Failure for what is no package, or has no graph. Not while a material exists that was made of the
// same package: what is read here takes its place among the packages that the renderer knows.
PackageFile readPackageFile(const std::string& path);
PackageFile describePackage(const std::string& name, kv::vector<char> bytes);

// The identifiers of the outputs, to be listed in a message.
std::vector<std::string> outputIdentifiers(const SubstanceAir::GraphDesc& graph);

} // namespace tool
