#include "embedded/program/Seams.h"

#include "embedded/nodes/NodeKind.h"
#include "embedded/program/ProgramFacts.h"

namespace embedded {
namespace {

const char* ownCause(const ProgramNode& node) {
    const NodeKind& kind = *findNodeKind(node.kind);
    return kind.breaksPeriod ? kind.breaksPeriod(knownParameters(node)) : nullptr;
}

// Marks the image inputs that the node reads itself.
void markImages(const ProgramNode& node, std::vector<bool>& isRead) {
    const NodeKind& kind = *findNodeKind(node.kind);
    for (std::size_t i = 0; i < node.parameters.size(); ++i)
        if (kind.parameters[i].type == ValueType::Image && node.parameters[i].input != Binding::constantOnly)
            isRead[static_cast<std::size_t>(node.parameters[i].input)] = true;
}

} // namespace

std::vector<OutputSeams> findSeams(const Program& program) {
    std::vector<const char*> causes;
    for (const ProgramNode& node : program.nodes) causes.push_back(ownCause(node));

    std::vector<OutputSeams> seams;
    for (const ProgramOutput& output : program.outputs) {
        OutputSeams& found = seams.emplace_back();
        const std::vector<bool> isNeeded = neededNodes(program, {output.node});
        std::vector<bool> isRead(program.inputs.size());
        for (std::size_t i = 0; i < program.nodes.size(); ++i) {
            if (!isNeeded[i]) continue;
            markImages(program.nodes[i], isRead);
            if (causes[i] && !found.cause) found.cause = SeamCause{static_cast<std::int32_t>(i), causes[i]};
        }
        for (std::size_t i = 0; i < isRead.size(); ++i)
            if (isRead[i]) found.images.push_back(static_cast<std::int32_t>(i));
    }
    return seams;
}

} // namespace embedded
