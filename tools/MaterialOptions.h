// The options that choose a material of one or two packages and its values, shared by the commands that
// render, and the material set up as they say.
#pragma once

#include "tools/MaterialSession.h"
#include "tools/PackageFile.h"
#include "tools/Receipt.h"
#include "tools/ValueOptions.h"

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace tool {

struct MaterialOptions {
    std::string bottom;
    std::string top;
    std::string channel;
    ValueOptions values;

    void addTo(CLI::App& command);
    std::vector<std::string> files() const { return {bottom, top, values.stateFile}; } // some may be empty
};

// Throws UsageError and Failure; remarks go to standard error.
class PreparedMaterial {
public:
    explicit PreparedMaterial(const MaterialOptions& options);

    const PackageFile& bottom() const { return bottomPackage; }
    const PackageFile& top() const { return topPackage; }
    const kv::Reference<kvSubstance::Substance>& material() const { return session.material(); }

    // Throws Failure with the reason when there is no texture.
    Texture render();

    // For a texture of the present values.
    Receipt receiptFor(const Texture& texture) const;

private:
    void checkConnections() const;

    std::string shownChannel; // empty when there are two packages
    PackageFile bottomPackage;
    PackageFile topPackage;
    MaterialSession session;
};

} // namespace tool
