// The options that choose a material's values, shared by the commands that render.
#pragma once

#include "material/Substance.h"
#include "tools/Preset.h"

#include <CLI/App.hpp>

#include <string>
#include <utility>
#include <vector>

namespace tool {

struct ValueOptions {
    std::string size;
    std::string preset;
    std::string stateFile;
    std::vector<std::string> assignments; // IDENTIFIER=V[,V...]

    void addTo(CLI::App& command);

    // Throws UsageError for what makes no sense whatever the material is.
    void check() const;

    // Whether values are given besides the size.
    bool areGiven() const { return !preset.empty() || !stateFile.empty() || !assignments.empty(); }
};

// Sets values in the order preset, state file, assignments, size. Throws Failure, whose message names the
// package where the package is at fault; remarks go to standard error.
void applyOptions(const ValueOptions& options, const kv::Reference<kvSubstance::Substance>& material,
                  const MaterialGraphs& graphs, const std::string& package);

// Splits IDENTIFIER=REST. Throws UsageError that shows the expected form.
std::pair<std::string, std::string> splitAssignment(const std::string& text, const std::string& option,
                                                    const std::string& form);

} // namespace tool
