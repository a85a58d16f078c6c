// The options that choose a material and its values, shared by the commands that render, and the material set
// up as they say.
#pragma once

#include "tools/MaterialSession.h"
#include "tools/PackageFile.h"

#include <CLI/App.hpp>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tool {

struct MaterialOptions {
    std::string bottom;
    std::string top;
    std::string size;
    std::string channel;
    std::string preset;
    std::string stateFile;
    std::vector<std::string> assignments; // IDENTIFIER=V[,V...]

    void addTo(CLI::App& command);
};

// Values are set in the order preset, state file, assignments, size. Throws UsageError and Failure; remarks
// go to standard error.
class PreparedMaterial {
public:
    explicit PreparedMaterial(const MaterialOptions& options);

    const PackageFile& bottom() const { return bottomPackage; }
    const PackageFile& top() const { return topPackage; }
    const kv::Reference<kvSubstance::Substance>& material() const { return session.material(); }

    // Throws Failure with the reason when there is no texture.
    Picture render();

private:
    void checkConnections(const MaterialOptions& options) const;
    void applyState(const std::string& path);

    // Before the members that are made of it, so that bad sizes are refused before files are read.
    std::optional<std::pair<int, int>> resolution; // base-2 logarithms
    PackageFile bottomPackage;
    PackageFile topPackage;
    MaterialSession session;
};

// Splits IDENTIFIER=REST. Throws UsageError that shows the expected form.
std::pair<std::string, std::string> splitAssignment(const std::string& text, const std::string& option,
                                                    const std::string& form);

} // namespace tool
