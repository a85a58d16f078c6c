#include "framework/render/StackConnections.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>

namespace SubstanceAir {

namespace {

// From lower-cased names to uids. Of two sources of a name the first counts.
using NameIndex = std::map<std::string, unsigned int>;

// ASCII only, whatever the host's locale.
std::string lowerCase(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

NameIndex indexOfImageInputs(const GraphDesc& top) {
    NameIndex index;
    for (const auto& input : top.inputs)
        if (input->isImage()) index.emplace(lowerCase(input->identifier), input->uid);
    for (const auto& input : top.inputs)
        if (input->isImage()) index.emplace(lowerCase(input->label), input->uid);
    return index;
}

NameIndex indexOfOutputs(const GraphDesc& bottom) {
    NameIndex index;
    for (const OutputDesc& output : bottom.outputs) index.emplace(lowerCase(output.identifier), output.uid);
    for (const OutputDesc& output : bottom.outputs) index.emplace(lowerCase(output.label), output.uid);
    for (const OutputDesc& output : bottom.outputs)
        if (output.channel < ChannelUsageCount)
            index.emplace(lowerCase(channelUsageNames()[output.channel]), output.uid);
    return index;
}

// An input that goes by one name of a chain also answers to the others, where the graph has no input of that
// name. The first name that is there decides for the whole chain.
void addEquivalentNames(NameIndex& inputs) {
    static const std::vector<const char*> chains[] = {
        {"specular", "specularcolor", "specularlevel", "glossiness", "roughness"},
        {"bump", "height", "displacement"},
    };
    for (const std::vector<const char*>& chain : chains) {
        const auto isPresent = [&inputs](const char* name) { return inputs.count(name) != 0; };
        const auto first = std::find_if(chain.begin(), chain.end(), isPresent);
        if (first == chain.end()) continue;
        const unsigned int uid = inputs.at(*first);
        for (const char* const name : chain) inputs.emplace(name, uid);
    }
}

// Of two names of one input the one that sorts first decides its output.
StackConnections connectByName(const NameIndex& inputs, const NameIndex& outputs) {
    StackConnections connections;
    std::set<unsigned int> connected;
    for (const auto& [name, inputUid] : inputs) {
        const auto output = outputs.find(name);
        if (output == outputs.end() || !connected.insert(inputUid).second) continue;
        connections.emplace_back(output->second, inputUid);
    }
    return connections;
}

// A lone input takes the lone output, or else the diffuse one. Names are counted, not inputs: one whose label
// differs from its identifier has two and stays unconnected. Kept: hosts rely on such an input staying free.
StackConnections connectLoneInput(const NameIndex& inputs, const NameIndex& outputs) {
    if (inputs.size() != 1) return {};
    const auto output = outputs.size() == 1 ? outputs.begin() : outputs.find("diffuse");
    if (output == outputs.end()) return {};
    return {{output->second, inputs.begin()->second}};
}

} // namespace

StackConnections existingConnections(const GraphDesc& bottom, const GraphDesc& top,
                                     const StackConnections& wanted) {
    StackConnections connections;
    for (const auto& pair : wanted)
        if (findOutput(bottom.outputs, pair.first) != bottom.outputs.end() &&
            findInput(top.inputs, pair.second))
            connections.push_back(pair);
    return connections;
}

StackConnections matchingConnections(const GraphDesc& bottom, const GraphDesc& top) {
    NameIndex inputs = indexOfImageInputs(top);
    addEquivalentNames(inputs);
    const NameIndex outputs = indexOfOutputs(bottom);

    const StackConnections connections = connectByName(inputs, outputs);
    return connections.empty() ? connectLoneInput(inputs, outputs) : connections;
}

} // namespace SubstanceAir
