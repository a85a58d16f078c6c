// Two graphs stacked: outputs of the bottom graph feed image inputs of the top graph, and the pair is one
// package with one graph.
#pragma once

#include "framework/description/PackageDesc.h"

#include <utility>
#include <vector>

namespace SubstanceAir {

// How to link two graphs. The default connects by names and channel usages.
struct ConnectionList {
    // (output uid of the bottom graph, input uid of the top graph). Pairs with uids that do not exist are
    // dropped; when the list is not empty, nothing is connected but what it says.
    std::vector<std::pair<unsigned int, unsigned int>> pairs;

    // What becomes of bottom outputs that no connection uses: 0 lets the linker keep them, any other value
    // makes them outputs of the stack.
    unsigned int bottomOutputs = 0;
};

// Built once, then only read. Registered with the renderer under a uid of its own while it lives. The two
// graphs and their packages outlive it. When either graph belongs to no package, or there would be too many
// dependencies, the stack is empty, has uid 0, and is not registered.
class PackageStackDesc final : public PackageDesc {
public:
    PackageStackDesc(const GraphDesc& bottomGraph, const GraphDesc& topGraph,
                     const ConnectionList& connectionList);
    ~PackageStackDesc() override;

    // Pushes both packages, the connections, the selected outputs and the fused inputs. False when a package
    // is missing or could not be pushed.
    bool pushToLinker(SubstanceLinkerHandle* handle) const override;

    using UidPairs = std::vector<std::pair<unsigned int, unsigned int>>;
    const UidPairs& connections() const { return connectionPairs; } // (bottom output, top input)
    const UidPairs& fusedInputs() const { return fusedPairs; }      // (bottom input, top input)
    const std::vector<unsigned int>& selectedOutputs() const { return selected; }

private:
    void enterRegistry();
    void connect();
    void buildGraph(GraphDesc& graph);

    UidPairs connectionPairs;
    unsigned int bottomOutputsFlag;
    const GraphDesc* bottom;
    const GraphDesc* top;
    UidPairs fusedPairs;
    std::vector<unsigned int> selected;
};

} // namespace SubstanceAir
