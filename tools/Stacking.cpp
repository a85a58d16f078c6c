#include "tools/Stacking.h"

#include "embedded/compiler/Suggestion.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/PackageStackDesc.h"
#include "tools/Table.h"

#include <algorithm>
#include <map>
#include <ostream>

namespace tool {
namespace {

using SubstanceAir::GraphDesc;
using SubstanceAir::InputDescBase;
using SubstanceAir::OutputDesc;

using NameIndex = std::map<std::string, unsigned int>; // of names in lower case, the first entry counts

std::string lowered(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

std::string usageOf(const OutputDesc& output) {
    return output.channel < SubstanceAir::ChannelUsageCount
               ? SubstanceAir::channelUsageNames()[output.channel]
               : "";
}

NameIndex namesOfOutputs(const GraphDesc& graph) {
    NameIndex names;
    for (const OutputDesc& output : graph.outputs) names.emplace(lowered(output.identifier), output.uid);
    for (const OutputDesc& output : graph.outputs) names.emplace(lowered(output.label), output.uid);
    for (const OutputDesc& output : graph.outputs)
        if (!usageOf(output).empty()) names.emplace(lowered(usageOf(output)), output.uid);
    return names;
}

NameIndex namesOfImageInputs(const GraphDesc& graph) {
    NameIndex names;
    for (const auto& input : graph.inputs)
        if (input->isImage()) names.emplace(lowered(input->identifier), input->uid);
    for (const auto& input : graph.inputs)
        if (input->isImage()) names.emplace(lowered(input->label), input->uid);
    // An input also answers to the names that stand in for its own.
    static const std::vector<std::string> chains[] = {
        {"specular", "specularcolor", "specularlevel", "glossiness", "roughness"},
        {"bump", "height", "displacement"},
    };
    for (const auto& chain : chains) {
        const auto first = std::find_if(chain.begin(), chain.end(),
                                        [&](const auto& name) { return names.count(name) != 0; });
        if (first == chain.end()) continue;
        const unsigned int uid = names.at(*first);
        for (const std::string& name : chain) names.emplace(name, uid);
    }
    return names;
}

// By which name an output found an input. Names run in their order, as they did when the two were connected.
std::string connectingName(const NameIndex& inputs, const NameIndex& outputs, const InputDescBase& input,
                           const OutputDesc& output) {
    for (const auto& [name, uid] : inputs) {
        const auto found = outputs.find(name);
        if (uid != input.uid || found == outputs.end() || found->second != output.uid) continue;
        const bool isOwnName = name == lowered(input.identifier) || name == lowered(input.label);
        return embedded::quoted(name) + (isOwnName ? "" : ", which stands in for it");
    }
    return "being the best there is";
}

} // namespace

void explainStacking(std::ostream& out, const PackageFile& bottom, const PackageFile& top,
                     const kvSubstance::Substance& material) {
    const NameIndex outputs = namesOfOutputs(bottom.graph());
    const NameIndex inputs = namesOfImageInputs(top.graph());
    const auto& connections = material.getPackageStackDesc()->connections();
    out << connections.size() << (connections.size() == 1 ? " connection from " : " connections from ")
        << bottom.name << " to " << top.name << "\n";
    Table table({"output", "usage", "feeds input", "connected by"});
    for (const auto& [outputUid, inputUid] : connections) {
        const auto output = findOutput(bottom.graph().outputs, outputUid);
        const InputDescBase* const input = findInput(top.graph().inputs, inputUid);
        if (output == bottom.graph().outputs.end() || !input) continue;
        table.add({output->identifier, usageOf(*output), input->identifier,
                   connectingName(inputs, outputs, *input, *output)});
    }
    table.print(out, 2);

    const auto isFed = [&](unsigned int uid) {
        return std::any_of(connections.begin(), connections.end(),
                           [uid](const auto& connection) { return connection.second == uid; });
    };
    for (const auto& input : top.graph().inputs)
        if (input->isImage() && !isFed(input->uid))
            out << "  nothing feeds input " << input->identifier << "\n";
    for (const auto& [bottomUid, topUid] : material.getPackageStackDesc()->fusedInputs())
        if (const InputDescBase* const input = findInput(bottom.graph().inputs, bottomUid))
            out << "  input " << input->identifier << " is one for both\n";
}

bool hasConnections(const kvSubstance::Substance& material) {
    return !material.getPackageStackDesc()->connections().empty();
}

bool isOutOfDate(kvSubstance::Substance& material) {
    for (const auto& graph : material.getGraphInstances())
        for (const auto& output : graph->outputs)
            if (output->enabled && output->dirty) return true;
    return false;
}

std::string whyNoTexture(const PackageFile& bottom, const PackageFile& top,
                         const kvSubstance::Substance& material) {
    if (material.getPackageStackDesc()->graphs().empty())
        return top.name + ": cannot be stacked on " + bottom.name;
    const auto& outputs = top.graph().outputs;
    const auto output = std::find_if(outputs.begin(), outputs.end(), [](const OutputDesc& candidate) {
        return candidate.identifier == "Output";
    });
    if (output == outputs.end())
        return top.name + ": a top needs an output \"Output\", and has none" +
               embedded::suggestion("Output", outputIdentifiers(top.graph()));
    if ((output->format & ~32) != 0)
        return top.name + ": the format of the output \"Output\" is not 8-bit RGBA; make it srgb8 or rgba8";
    return bottom.name + ": the engine could not render it with " + top.name;
}

bool offersChannel(const GraphDesc& bottom, const std::string& channel) {
    return namesOfOutputs(bottom).count(lowered(channel)) != 0;
}

} // namespace tool
