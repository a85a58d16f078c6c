#include "embedded/program/Cost.h"

#include "embedded/nodes/NodeKind.h"
#include "embedded/program/ProgramFacts.h"
#include "embedded/program/Verifier.h"

#include <algorithm>
#include <string_view>

namespace embedded {
namespace {

// No fewer than the result has when the program runs.
int mostChannels(const ProgramNode& node, const std::vector<int>& channels) {
    constexpr int gray = 1;
    constexpr int colour = 4;
    const NodeKind& kind = *findNodeKind(node.kind);
    switch (kind.result) {
    case ResultChannels::Gray:
        return gray;
    case ResultChannels::Colour:
        return colour;
    case ResultChannels::ByParameter:
        for (std::size_t i = 0; i < node.parameters.size(); ++i)
            if (std::string_view(kind.parameters[i].name) == "colour")
                if (const auto value = knownParameters(node)[i]) return value->integers[0] ? colour : gray;
        return colour;
    case ResultChannels::Widest:
        break;
    }
    int most = gray;
    for (std::size_t i = 0; i < node.sources.size(); ++i)
        if (kind.ports[i].channels == PortChannels::Any && node.sources[i] != ProgramNode::unconnected)
            most = std::max(most, channels[static_cast<std::size_t>(node.sources[i])]);
    return most;
}

} // namespace

ProgramCost costOf(const Program& program, const std::vector<std::size_t>& outputs, int log2Width,
                   int log2Height) {
    std::vector<std::int32_t> results;
    for (const std::size_t output : outputs) results.push_back(program.outputs[output].node);
    const std::vector<bool> isNeeded = neededNodes(program, results);
    std::vector<int> channels;
    ProgramCost cost;
    for (std::size_t i = 0; i < program.nodes.size(); ++i) {
        const ProgramNode& node = program.nodes[i];
        channels.push_back(mostChannels(node, channels));
        if (!isNeeded[i]) continue;
        const bool isDriven = node.resolution.input != Binding::constantOnly;
        const auto& constant = node.resolution.constant.integers;
        const auto side = [](std::int32_t log2) {
            return std::uint64_t{1} << std::clamp<std::int32_t>(log2, 0, maxResolution);
        };
        const std::uint64_t pixels =
            side(isDriven ? log2Width : constant[0]) * side(isDriven ? log2Height : constant[1]);
        ++cost.nodes;
        cost.operations += findNodeKind(node.kind)->costPerPixel * static_cast<double>(pixels);
        cost.bytes += pixels * static_cast<std::uint64_t>(channels.back()) * sizeof(float);
        cost.pixels = std::max(cost.pixels, pixels);
    }
    return cost;
}

} // namespace embedded
