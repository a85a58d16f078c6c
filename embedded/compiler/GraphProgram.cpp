#include "embedded/compiler/GraphProgram.h"

#include "embedded/compiler/NodeOrder.h"
#include "embedded/compiler/Suggestion.h"
#include "embedded/compiler/Uid.h"
#include "embedded/compiler/Wiring.h"

#include <algorithm>
#include <set>
#include <string_view>

namespace embedded {

namespace {

// The nodes that one node's result depends on, itself included.
std::vector<bool> dependencies(const std::vector<ProgramNode>& nodes, const NodeIndexes& order,
                               std::optional<std::size_t> result) {
    std::vector<bool> needed(nodes.size());
    if (result) needed[*result] = true;
    for (auto node = order.rbegin(); node != order.rend(); ++node) {
        if (!needed[*node]) continue;
        for (const std::int32_t source : nodes[*node].sources)
            if (source != ProgramNode::unconnected) needed[static_cast<std::size_t>(source)] = true;
    }
    return needed;
}

bool hasSeed(const NodeKind& kind) {
    return std::any_of(kind.parameters.begin(), kind.parameters.end(),
                       [](const ParameterInfo& info) { return std::string_view(info.name) == "seed"; });
}

// The inputs that make a difference to the node's result.
std::set<std::int32_t> inputsOf(const ProgramNode& node) {
    std::set<std::int32_t> inputs = {node.resolution.input};
    for (const Binding& binding : node.parameters) inputs.insert(binding.input);
    const NodeKind* kind = findNodeKind(node.kind);
    if (kind && hasSeed(*kind)) inputs.insert(node.seed.input);
    inputs.erase(Binding::constantOnly);
    return inputs;
}

void appendInputs(const SourceGraph& graph, Program& program) {
    for (const SourceInput& input : graph.inputs) {
        ProgramInput appended;
        appended.uid = inputUid(graph, input);
        appended.type = input.type.value_or(ValueType::Float);
        appended.role = input.role;
        appended.defaultValue = input.defaultValue;
        program.inputs.push_back(appended);
    }
}

// Gives the new index of each node of the graph.
NodeIndexes appendNodes(const std::vector<ProgramNode>& nodes, const NodeIndexes& order,
                        const std::vector<bool>& isUsed, std::int32_t firstInput, Program& program) {
    NodeIndexes newIndex(nodes.size());
    const auto moveInput = [&](Binding& binding) {
        if (binding.input != Binding::constantOnly) binding.input += firstInput;
    };
    for (const std::size_t index : order) {
        if (!isUsed[index]) continue;
        ProgramNode node = nodes[index];
        for (std::int32_t& source : node.sources)
            if (source != ProgramNode::unconnected)
                source = static_cast<std::int32_t>(newIndex[static_cast<std::size_t>(source)]);
        std::for_each(node.parameters.begin(), node.parameters.end(), moveInput);
        moveInput(node.resolution);
        moveInput(node.seed);
        newIndex[index] = program.nodes.size();
        program.nodes.push_back(std::move(node));
    }
    return newIndex;
}

void warnOfUnused(const SourceGraph& graph, const std::vector<bool>& isUsed, const AlteredOutputs& altered,
                  Diagnostics& diagnostics) {
    for (std::size_t i = 0; i < graph.nodes.size(); ++i)
        if (!isUsed[i])
            diagnostics.warning(graph.nodes[i].place, "node " + quoted(graph.nodes[i].name),
                                "no output depends on it, so it is left out");
    for (std::size_t i = 0; i < graph.inputs.size(); ++i)
        if (altered[i].empty())
            diagnostics.warning(graph.inputs[i].place, "input " + quoted(graph.inputs[i].identifier),
                                "alters no output");
}

} // namespace

std::uint32_t inputUid(const SourceGraph& graph, const SourceInput& input) {
    return deriveUid({graph.url, "input", input.identifier});
}

std::uint32_t outputUid(const SourceGraph& graph, const SourceOutput& output) {
    return deriveUid({graph.url, "output", output.identifier});
}

AlteredOutputs appendGraph(const SourceGraph& graph, Program& program, std::vector<std::string>& nodeNames,
                           Diagnostics& diagnostics) {
    const Wiring wiring = wireGraph(graph, diagnostics);
    const NodeIndexes order = orderNodes(graph, wiring.nodes, diagnostics);

    AlteredOutputs altered(graph.inputs.size());
    std::vector<bool> isUsed(graph.nodes.size());
    for (std::size_t output = 0; output < graph.outputs.size(); ++output) {
        const auto needed = dependencies(wiring.nodes, order, wiring.outputNodes[output]);
        std::set<std::int32_t> inputs;
        for (std::size_t node = 0; node < needed.size(); ++node) {
            if (!needed[node]) continue;
            isUsed[node] = true;
            inputs.merge(inputsOf(wiring.nodes[node]));
        }
        for (const std::int32_t input : inputs) altered[static_cast<std::size_t>(input)].push_back(output);
    }
    if (diagnostics.hasErrors()) return altered; // what is unused may be so because of them
    warnOfUnused(graph, isUsed, altered, diagnostics);

    const auto firstInput = static_cast<std::int32_t>(program.inputs.size());
    appendInputs(graph, program);
    const NodeIndexes newIndex = appendNodes(wiring.nodes, order, isUsed, firstInput, program);
    for (const std::size_t index : order)
        if (isUsed[index]) nodeNames.push_back(graph.nodes[index].name);
    for (std::size_t i = 0; i < graph.outputs.size(); ++i) {
        const SourceOutput& output = graph.outputs[i];
        program.outputs.push_back({outputUid(graph, output),
                                   static_cast<std::int32_t>(newIndex[*wiring.outputNodes[i]]), output.format,
                                   output.mipmaps});
    }
    return altered;
}

} // namespace embedded
