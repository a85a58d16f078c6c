#include "embedded/compiler/NodeOrder.h"

#include "embedded/compiler/Suggestion.h"

#include <algorithm>
#include <functional>
#include <queue>

namespace embedded {

namespace {

// A. B. Kahn (1962), "Topological sorting of large networks"; of the nodes that are ready, the first comes
// first.
class Ordering {
public:
    Ordering(const SourceGraph& ordered, const std::vector<ProgramNode>& wired, Diagnostics& reports)
        : graph(ordered)
        , nodes(wired)
        , diagnostics(reports)
        , readers(wired.size())
        , waitingFor(wired.size())
        , isPlaced(wired.size()) {
        for (std::size_t i = 0; i < nodes.size(); ++i)
            for (const std::int32_t source : nodes[i].sources) {
                if (source == ProgramNode::unconnected) continue;
                readers[static_cast<std::size_t>(source)].push_back(i);
                ++waitingFor[i];
            }
    }

    NodeIndexes run() && {
        for (std::size_t i = 0; i < nodes.size(); ++i)
            if (waitingFor[i] == 0) ready.push(i);
        placeReady();
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            if (isPlaced[i]) continue;
            const NodeIndexes cycle = findCycle(i);
            report(cycle);
            for (const std::size_t node : cycle) place(node);
            placeReady();
        }
        return std::move(order);
    }

private:
    void placeReady() {
        while (!ready.empty()) {
            const std::size_t node = ready.top();
            ready.pop();
            place(node);
        }
    }

    void place(std::size_t node) {
        if (isPlaced[node]) return;
        isPlaced[node] = true;
        order.push_back(node);
        for (const std::size_t reader : readers[node])
            if (--waitingFor[reader] == 0) ready.push(reader);
    }

    // Whoever still waits has a source that still waits, so following those ends in a circle.
    NodeIndexes findCycle(std::size_t node) const {
        NodeIndexes path;
        std::vector<bool> isOnPath(nodes.size());
        while (!isOnPath[node]) {
            isOnPath[node] = true;
            path.push_back(node);
            for (const std::int32_t source : nodes[node].sources) {
                if (source == ProgramNode::unconnected || isPlaced[static_cast<std::size_t>(source)])
                    continue;
                node = static_cast<std::size_t>(source);
                break;
            }
        }
        path.erase(path.begin(), std::find(path.begin(), path.end(), node));
        std::rotate(path.begin(), std::min_element(path.begin(), path.end()), path.end());
        return path;
    }

    void report(const NodeIndexes& cycle) {
        std::string text;
        for (const std::size_t node : cycle) text += quoted(graph.nodes[node].name) + " reads ";
        diagnostics.error(graph.nodes[cycle.front()].place, "node " + quoted(graph.nodes[cycle.front()].name),
                          "depends on itself: " + text + quoted(graph.nodes[cycle.front()].name));
    }

    const SourceGraph& graph;
    const std::vector<ProgramNode>& nodes;
    Diagnostics& diagnostics;
    std::vector<NodeIndexes> readers;
    std::vector<std::size_t> waitingFor;
    std::vector<bool> isPlaced;
    std::priority_queue<std::size_t, NodeIndexes, std::greater<>> ready;
    NodeIndexes order;
};

} // namespace

NodeIndexes orderNodes(const SourceGraph& graph, const std::vector<ProgramNode>& nodes,
                       Diagnostics& diagnostics) {
    return Ordering(graph, nodes, diagnostics).run();
}

} // namespace embedded
