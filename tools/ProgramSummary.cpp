#include "tools/ProgramSummary.h"

#include "embedded/nodes/NodeKind.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Cost.h"
#include "embedded/program/Package.h"
#include "embedded/program/Seams.h"

#include <algorithm>

namespace tool {
namespace {

std::string describe(const embedded::SeamCause& cause, const embedded::Program& program) {
    const embedded::ProgramNode& node = program.nodes[static_cast<size_t>(cause.node)];
    return "node " + std::to_string(cause.node) + " (" + embedded::findNodeKind(node.kind)->name +
           "), parameter " + cause.parameter;
}

std::string identifierOf(unsigned int input, const GraphSummary& graph) {
    const auto found = std::find_if(graph.inputs.begin(), graph.inputs.end(),
                                    [input](const InputSummary& other) { return other.uid == input; });
    return found == graph.inputs.end() ? "uid " + std::to_string(input) : found->identifier;
}

TilingSummary summarize(const embedded::OutputSeams& seams, const embedded::Program& program,
                        const GraphSummary& graph) {
    TilingSummary tiling;
    if (seams.cause) tiling.seam = describe(*seams.cause, program);
    for (const std::int32_t image : seams.images)
        tiling.images.push_back(identifierOf(program.inputs[static_cast<size_t>(image)].uid, graph));
    return tiling;
}

// Costs grow with the pixels, so that any resolution tells what one pixel costs.
CostSummary summarizeCost(const embedded::Program& program, const std::vector<size_t>& outputs) {
    const embedded::ProgramCost cost = embedded::costOf(program, outputs, 8, 8);
    const double pixels = std::max<double>(1, static_cast<double>(cost.pixels));
    return {cost.nodes, cost.operations / pixels, static_cast<double>(cost.bytes) / pixels};
}

} // namespace

void addProgramFacts(const PackageFile& file, std::vector<GraphSummary>& graphs) {
    const auto package = embedded::decodePackage(file.bytes.data(), file.bytes.size());
    if (!package) return;
    const auto program = embedded::decodeAssembly(package->assembly.data(), package->assembly.size());
    if (!program) return;
    const std::vector<embedded::OutputSeams> seams = embedded::findSeams(*program);
    for (GraphSummary& graph : graphs) {
        std::vector<size_t> shown;
        for (OutputSummary& output : graph.outputs) {
            const auto found = std::find_if(program->outputs.begin(), program->outputs.end(),
                                            [&](const auto& other) { return other.uid == output.uid; });
            if (found == program->outputs.end()) continue;
            shown.push_back(static_cast<size_t>(found - program->outputs.begin()));
            output.tiling = summarize(seams[shown.back()], *program, graph);
        }
        graph.cost = summarizeCost(*program, shown);
    }
}

} // namespace tool
