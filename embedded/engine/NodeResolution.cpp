#include "embedded/engine/NodeResolution.h"

#include "embedded/nodes/ParameterRange.h"

#include <algorithm>
#include <string_view>

namespace embedded {
namespace {

int sideOf(std::int32_t log2) {
    return 1 << std::clamp<std::int32_t>(log2, 0, maximumLog2Side);
}

int integerParameter(const ResolvedNode& node, std::string_view name) {
    for (std::size_t i = 0; i < node.parameters.size(); ++i)
        if (node.kind->parameters[i].name == name) return node.parameters[i].integers[0];
    return 0;
}

bool isAny(const NodeKind& kind, std::size_t port) {
    return port >= kind.ports.size() || kind.ports[port].channels == PortChannels::Any;
}

bool isColour(const ResolvedNode& node, const std::vector<int>& sourceChannels) {
    switch (node.kind->result) {
    case ResultChannels::Gray:
        return false;
    case ResultChannels::Colour:
        return true;
    case ResultChannels::ByParameter:
        return integerParameter(node, "colour") != 0;
    case ResultChannels::Widest:
        break;
    }
    for (std::size_t i = 0; i < sourceChannels.size(); ++i)
        if (isAny(*node.kind, i) && sourceChannels[i] > 1) return true;
    return false;
}

int resultChannels(const ResolvedNode& node, std::vector<int> sourceChannels) {
    if (node.takesPicture) sourceChannels.push_back(node.picture ? node.picture->channels() : 0);
    if (!isColour(node, sourceChannels)) return 1;
    bool hasAlpha = false;
    for (std::size_t i = 0; i < sourceChannels.size(); ++i)
        hasAlpha = hasAlpha || (isAny(*node.kind, i) && sourceChannels[i] == 4);
    if (node.kind->hasAlpha) hasAlpha = node.kind->hasAlpha(node.parameters, sourceChannels);
    return hasAlpha ? 4 : 3;
}

// Unsigned addition: seeds wrap around.
std::int32_t addSeeds(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

} // namespace

int ResolvedNode::portChannels(std::size_t port) const {
    if (isAny(*kind, port)) return channels;
    return kind->ports[port].channels == PortChannels::Gray ? 1 : 4;
}

ResolvedNode resolveNode(const ProgramNode& node, const std::vector<int>& sourceChannels,
                         const InputValues& inputs) {
    ResolvedNode resolved;
    resolved.kind = findNodeKind(node.kind);
    const auto size = resolveBinding(node.resolution, ValueType::Integer2, inputs).integers;
    resolved.width = sideOf(size[0]);
    resolved.height = sideOf(size[1]);
    for (std::size_t i = 0; i < node.parameters.size(); ++i) {
        const ParameterInfo& parameter = resolved.kind->parameters[i];
        const Binding& binding = node.parameters[i];
        if (parameter.type == ValueType::Image) {
            resolved.takesPicture = true;
            resolved.parameters.push_back(Value{ValueType::Image, {}, {}});
            if (binding.input != Binding::constantOnly)
                resolved.picture = inputs.images[static_cast<std::size_t>(binding.input)];
            continue;
        }
        Value value = withinRange(resolveBinding(binding, parameter.type, inputs), parameter);
        if (std::string_view(parameter.name) == "seed")
            value.integers[0] = addSeeds(value.integers[0],
                                         resolveBinding(node.seed, ValueType::Integer, inputs).integers[0]);
        resolved.parameters.push_back(value);
    }
    resolved.channels = resultChannels(resolved, sourceChannels);
    return resolved;
}

} // namespace embedded
