// One graph of a package: its inputs, outputs and presets.
#pragma once

#include "framework/description/InputDesc.h"
#include "framework/description/OutputDesc.h"
#include "framework/description/Preset.h"

#include <memory>
#include <string>
#include <vector>

namespace SubstanceAir {

class PackageDesc;

// Held by value in its package. Copies own copies of the input descriptors, and take neither presets nor
// parent along: a new copy has none, a target of an assignment keeps its own. There is no move, so that a
// list of graphs that outgrows its room copies by the same rule. On purpose: hosts tell a graph that stands
// in its package from a copy by these two.
struct GraphDesc {
    std::string packageUrl; // the graph's identity within its package
    std::string label;
    std::vector<OutputDesc> outputs;                    // by uid, ascending
    std::vector<std::unique_ptr<InputDescBase>> inputs; // by uid, ascending
    std::vector<Preset> presets;                        // in document order
    PackageDesc* parent = nullptr;                      // not owned

    GraphDesc() = default;
    GraphDesc(const GraphDesc& other);
    GraphDesc& operator=(const GraphDesc& other);
    ~GraphDesc() = default;
};

} // namespace SubstanceAir
