#include "embedded/linker/LinkedProgram.h"

#include "embedded/nodes/NodeKind.h"
#include "embedded/program/PixelFormat.h"
#include "embedded/program/Verifier.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace embedded {

namespace {

template <typename Function>
void forEachBinding(ProgramNode& node, Function function) {
    for (Binding& binding : node.parameters) function(binding);
    function(node.resolution);
    function(node.seed);
}

bool isBoundTo(const ProgramNode& node, std::size_t input) {
    return std::any_of(node.parameters.begin(), node.parameters.end(), [&](const Binding& binding) {
        return binding.input == static_cast<std::int32_t>(input);
    });
}

// The port through which a node that reads an image input takes another node's result instead.
std::optional<std::size_t> connectedPort(const ProgramNode& node) {
    const NodeKind* kind = findNodeKind(node.kind);
    if (!kind) return std::nullopt;
    for (std::size_t i = 0; i < kind->ports.size(); ++i)
        if (std::string_view(kind->ports[i].name) == "connected") return i;
    return std::nullopt;
}

void redirect(Program& program, std::size_t from, std::size_t to) {
    for (ProgramNode& node : program.nodes)
        forEachBinding(node, [&](Binding& binding) {
            if (binding.input == static_cast<std::int32_t>(from))
                binding.input = static_cast<std::int32_t>(to);
        });
}

// Of inputs that share uid and type the first one stays and drives what the others drove. Those already
// removed are not bound to anything.
void uniteInputs(Program& program, const std::vector<bool>& removed) {
    std::vector<std::int32_t> newIndex(program.inputs.size());
    std::vector<ProgramInput> kept;
    std::map<std::pair<std::uint32_t, ValueType>, std::int32_t> firstOfKey;
    for (std::size_t i = 0; i < program.inputs.size(); ++i) {
        if (removed[i]) continue;
        const ProgramInput& input = program.inputs[i];
        const auto next = static_cast<std::int32_t>(kept.size());
        const auto [first, isNew] = firstOfKey.emplace(std::make_pair(input.uid, input.type), next);
        if (isNew) kept.push_back(input);
        newIndex[i] = first->second;
    }
    for (ProgramNode& node : program.nodes)
        forEachBinding(node, [&](Binding& binding) {
            if (binding.input != Binding::constantOnly)
                binding.input = newIndex[static_cast<std::size_t>(binding.input)];
        });
    program.inputs = std::move(kept);
}

// Of outputs that share a uid the last one stays.
void removeShadowedOutputs(std::vector<ProgramOutput>& outputs) {
    std::unordered_set<std::uint32_t> seen;
    std::vector<ProgramOutput> kept;
    for (auto output = outputs.rbegin(); output != outputs.rend(); ++output)
        if (seen.insert(output->uid).second) kept.push_back(*output);
    std::reverse(kept.begin(), kept.end());
    outputs = std::move(kept);
}

} // namespace

bool LinkedProgram::append(const Program& program) {
    if (merged.inputs.size() + program.inputs.size() > maxProgramInputs ||
        merged.nodes.size() + program.nodes.size() > maxProgramNodes ||
        merged.outputs.size() + program.outputs.size() > maxProgramOutputs)
        return false;

    const auto firstInput = static_cast<std::int32_t>(merged.inputs.size());
    const auto firstNode = static_cast<std::int32_t>(merged.nodes.size());
    if (partCount == 0) merged.uid = program.uid;
    for (const ProgramInput& input : program.inputs) {
        merged.inputs.push_back(input);
        inputOrigins.push_back({partCount, false});
    }
    for (ProgramNode node : program.nodes) {
        for (std::int32_t& source : node.sources)
            if (source != ProgramNode::unconnected) source += firstNode;
        forEachBinding(node, [&](Binding& binding) {
            if (binding.input != Binding::constantOnly) binding.input += firstInput;
        });
        merged.nodes.push_back(std::move(node));
    }
    for (ProgramOutput output : program.outputs) {
        output.node += firstNode;
        merged.outputs.push_back(output);
        outputPart.push_back(partCount);
    }
    ++partCount;
    return true;
}

bool LinkedProgram::setOutputFormat(std::uint32_t outputUid, std::int32_t format, std::uint32_t mipmaps) {
    if (!findPixelFormat(format) || !hasOutput(outputUid)) return false;
    for (ProgramOutput& output : merged.outputs) {
        if (output.uid != outputUid) continue;
        output.format = format;
        output.mipmaps = std::min(mipmaps, maxMipmaps);
    }
    return true;
}

bool LinkedProgram::hasOutput(std::uint32_t outputUid) const {
    return std::any_of(merged.outputs.begin(), merged.outputs.end(),
                       [&](const ProgramOutput& output) { return output.uid == outputUid; });
}

std::optional<std::size_t> LinkedProgram::findInput(std::uint32_t uid, std::size_t firstIndex,
                                                    std::size_t firstPart) const {
    for (std::size_t i = firstIndex; i < merged.inputs.size(); ++i)
        if (merged.inputs[i].uid == uid && !inputOrigins[i].removed && inputOrigins[i].part >= firstPart)
            return i;
    return std::nullopt;
}

// The first output of the uid has the most programs after it.
bool LinkedProgram::connect(std::uint32_t inputUid, std::uint32_t outputUid) {
    for (std::size_t i = 0; i < merged.outputs.size(); ++i) {
        if (merged.outputs[i].uid != outputUid) continue;
        const auto input = findInput(inputUid, 0, outputPart[i] + 1);
        return input && feed(*input, merged.outputs[i].node);
    }
    return false;
}

bool LinkedProgram::feed(std::size_t input, std::int32_t source) {
    if (merged.inputs[input].type != ValueType::Image) return false;

    // Fusing can make an early node read a late input; a source that does not come first would be a cycle.
    for (std::size_t i = 0; i < merged.nodes.size(); ++i) {
        const ProgramNode& node = merged.nodes[i];
        if (!isBoundTo(node, input)) continue;
        if (static_cast<std::int32_t>(i) <= source || !connectedPort(node)) return false;
    }
    Binding noImage;
    noImage.constant.type = ValueType::Image;
    for (ProgramNode& node : merged.nodes) {
        if (!isBoundTo(node, input)) continue;
        std::int32_t& connected = node.sources[*connectedPort(node)];
        if (connected == ProgramNode::unconnected)
            connected = source; // what is connected comes before images
        for (Binding& binding : node.parameters)
            if (binding.input == static_cast<std::int32_t>(input)) binding = noImage;
    }
    inputOrigins[input].removed = true;
    return true;
}

bool LinkedProgram::fuse(std::uint32_t firstUid, std::uint32_t secondUid) {
    const auto first = findInput(firstUid, 0, 0);
    if (!first) return false;
    auto second = findInput(secondUid, 0, inputOrigins[*first].part + 1);
    if (!second) second = findInput(secondUid, 0, 0);
    if (second == first) second = findInput(secondUid, *first + 1, 0);
    if (!second || merged.inputs[*first].type != merged.inputs[*second].type) return false;
    redirect(merged, *second, *first);
    inputOrigins[*second].removed = true;
    return true;
}

std::optional<Program> LinkedProgram::result() const {
    if (partCount == 0) return std::nullopt;
    Program program = merged;
    std::vector<bool> removed;
    for (const Origin& origin : inputOrigins) removed.push_back(origin.removed);
    uniteInputs(program, removed);
    removeShadowedOutputs(program.outputs);
    if (!verify(program).empty()) return std::nullopt;
    return program;
}

} // namespace embedded
