#include "embedded/compiler/OutputStatement.h"

#include "embedded/compiler/Source.h"
#include "embedded/compiler/Suggestion.h"
#include "embedded/program/Seams.h"

namespace embedded {
namespace {

std::string describe(const SeamCause& cause, const Program& program,
                     const std::vector<std::string>& nodeNames) {
    const auto node = static_cast<std::size_t>(cause.node);
    return "node " + quoted(nodeNames[node]) + " (" + findNodeKind(program.nodes[node].kind)->name +
           "), parameter " + cause.parameter;
}

} // namespace

std::vector<OutputStatement> stateOutputs(const Program& program, const std::vector<SourceGraph>& graphs,
                                          const std::vector<std::string>& nodeNames) {
    std::vector<std::string> inputs; // in the program's order, as the outputs are
    for (const SourceGraph& graph : graphs)
        for (const SourceInput& input : graph.inputs) inputs.push_back(input.identifier);

    std::vector<OutputStatement> statements;
    const std::vector<OutputSeams> allSeams = findSeams(program);
    auto seams = allSeams.begin();
    for (const SourceGraph& graph : graphs) {
        for (const SourceOutput& output : graph.outputs) {
            OutputStatement& statement = statements.emplace_back();
            statement.graph = graph.url;
            statement.output = output.identifier;
            if (seams->cause) statement.seam = describe(*seams->cause, program, nodeNames);
            for (const std::int32_t image : seams->images)
                statement.images.push_back(inputs[static_cast<std::size_t>(image)]);
            ++seams;
        }
    }
    return statements;
}

std::string toString(const OutputStatement& statement) {
    const std::string begin = "output " + statement.output + ": ";
    if (!statement.seam.empty()) return begin + "may not tile: " + statement.seam;
    if (statement.images.empty()) return begin + "tiles";
    std::string images;
    for (const std::string& image : statement.images) images += (images.empty() ? "" : ", ") + image;
    return begin + (statement.images.size() == 1 ? "tiles if the image given to " + images + " does"
                                                 : "tiles if the images given to " + images + " do");
}

} // namespace embedded
