#include "framework/render/PackageStackDesc.h"

#include "framework/render/Renderer.h"
#include "framework/render/RendererAccess.h"
#include "framework/render/StackInputs.h"

#include <algorithm>
#include <atomic>
#include <set>

namespace SubstanceAir {

namespace {

// Two stacks of the same packages differ by the counter, which goes on until the uid is free: pairs of
// different packages can meet in one result.
unsigned int nextStackUid(const RendererAccess& renderer, unsigned int bottomUid, unsigned int topUid) {
    static std::atomic<unsigned int> counter{0};
    unsigned int uid = 0;
    do {
        uid = bottomUid ^ topUid ^ counter++;
    } while (renderer && renderer->isPackageUidTaken(uid));
    return uid;
}

std::vector<const OutputDesc*> unconnectedOutputs(const GraphDesc& bottom,
                                                  const StackConnections& connections) {
    std::set<unsigned int> connected;
    for (const auto& pair : connections) connected.insert(pair.first);
    std::vector<const OutputDesc*> outputs;
    for (const OutputDesc& output : bottom.outputs)
        if (connected.count(output.uid) == 0) outputs.push_back(&output);
    return outputs;
}

} // namespace

PackageStackDesc::PackageStackDesc(const GraphDesc& bottomGraph, const GraphDesc& topGraph,
                                   const ConnectionList& connectionList)
    : connectionPairs(connectionList.pairs)
    , bottomOutputsFlag(connectionList.bottomOutputs)
    , bottom(&bottomGraph)
    , top(&topGraph) {
    if (!bottom->parent || !top->parent) return;

    connect();
    if (hasTooManyDependencies(*bottom, *top, connectionPairs)) return;
    enterRegistry();
    buildGraph(graphDescs.back());
}

PackageStackDesc::~PackageStackDesc() {
    close();
}

void PackageStackDesc::enterRegistry() {
    const RendererAccess renderer;
    assemblyUid = nextStackUid(renderer, bottom->parent->asmUid(), top->parent->asmUid());

    // The graph is there before the stack is registered: packages with a graph unregister themselves, also
    // when the rest of the construction fails.
    graphDescs.emplace_back();
    if (renderer) renderer->registerPackage(*this);
}

void PackageStackDesc::connect() {
    connectionPairs = connectionPairs.empty() ? matchingConnections(*bottom, *top)
                                              : existingConnections(*bottom, *top, connectionPairs);
}

void PackageStackDesc::buildGraph(GraphDesc& graph) {
    graph.packageUrl = bottom->packageUrl + "/" + top->packageUrl;
    graph.label = bottom->label;
    graph.parent = this;

    graph.outputs = top->outputs;
    for (const OutputDesc* const output : unconnectedOutputs(*bottom, connectionPairs)) {
        if (bottomOutputsFlag == 0)
            selected.push_back(output->uid);
        else
            graph.outputs.push_back(*output);
    }
    std::stable_sort(graph.outputs.begin(), graph.outputs.end(),
                     [](const OutputDesc& a, const OutputDesc& b) { return a.uid < b.uid; });

    const StackDependencies dependencies(*bottom, *top, connectionPairs);
    StackInputs joined = joinInputs(*bottom, *top, dependencies);
    graph.inputs = std::move(joined.inputs);
    fusedPairs = std::move(joined.fusedPairs);
    joinDependencies(graph, dependencies, joined.fusedUids);
}

bool PackageStackDesc::pushToLinker(SubstanceLinkerHandle* handle) const {
    if (!bottom->parent || !bottom->parent->pushToLinker(handle)) return false;
    if (!top->parent || !top->parent->pushToLinker(handle)) return false;
    for (const auto& [outputUid, inputUid] : connectionPairs)
        substanceLinkerConnectOutputToInput(handle, inputUid, outputUid);
    for (const unsigned int uid : selected) substanceLinkerHandleSelectOutputs(handle, 0, uid);
    for (const auto& [bottomUid, topUid] : fusedPairs) substanceLinkerFuseInputs(handle, bottomUid, topUid);
    return true;
}

} // namespace SubstanceAir
