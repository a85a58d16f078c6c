#include "embedded/engine/PlainEvaluator.h"

#include "embedded/engine/NodeEvaluation.h"

#include <deque>

namespace embedded {
namespace {

struct PlainResult {
    ResolvedNode node;
    Image image;
};

PlainResult compute(const Program& program, std::size_t node, const InputValues& inputs) {
    std::deque<PlainResult> results;
    std::vector<const ResolvedNode*> sourceNodes;
    std::vector<const Image*> sourceImages;
    for (const std::int32_t source : program.nodes[node].sources) {
        const bool connected = source != ProgramNode::unconnected;
        if (connected) results.push_back(compute(program, static_cast<std::size_t>(source), inputs));
        sourceNodes.push_back(connected ? &results.back().node : nullptr);
        sourceImages.push_back(connected ? &results.back().image : nullptr);
    }
    PlainResult result;
    result.node = resolveNode(program.nodes[node], sourceNodes, inputs);
    result.image = evaluateNode(result.node, sourceImages, runInOneBand);
    return result;
}

} // namespace

Image evaluatePlainly(const Program& program, std::size_t node, const InputValues& inputs) {
    return compute(program, node, inputs).image;
}

} // namespace embedded
