#include "embedded/program/ProgramFacts.h"

#include "embedded/nodes/ParameterRange.h"

#include <string_view>

namespace embedded {

KnownParameters knownParameters(const ProgramNode& node) {
    const NodeKind& kind = *findNodeKind(node.kind);
    KnownParameters known;
    for (std::size_t i = 0; i < node.parameters.size(); ++i) {
        const Binding& binding = node.parameters[i];
        const ParameterInfo& info = kind.parameters[i];
        const bool isSeed = std::string_view(info.name) == "seed"; // the node's own seed is added to it
        if (binding.input == Binding::constantOnly && info.type != ValueType::Image && !isSeed)
            known.emplace_back(withinRange(binding.constant, info));
        else
            known.emplace_back(std::nullopt);
    }
    return known;
}

std::vector<bool> neededNodes(const Program& program, const std::vector<std::int32_t>& nodes) {
    std::vector<bool> isNeeded(program.nodes.size());
    for (const std::int32_t node : nodes) isNeeded[static_cast<std::size_t>(node)] = true;
    for (std::size_t i = program.nodes.size(); i-- > 0;) {
        if (!isNeeded[i]) continue;
        for (const std::int32_t source : program.nodes[i].sources)
            if (source != ProgramNode::unconnected) isNeeded[static_cast<std::size_t>(source)] = true;
    }
    return isNeeded;
}

} // namespace embedded
