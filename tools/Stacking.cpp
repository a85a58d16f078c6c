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
    return output.channel < SubstanceAir::ChannelUsageCount ? SubstanceAir::channelUsageNames()[output.channel]
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
    return names;
}

// By which name an output found an input.
std::string connectingName(const NameIndex& inputs, const NameIndex& outputs, unsigned int inputUid,
                           unsigned int outputUid) {
    for (const auto& [name, uid] : inputs) {
        const auto output = outputs.find(name);
        if (uid == inputUid && output != outputs.end() && output->second == outputUid)
            return "the name \"" + name + "\"";
    }
    return "";
}

// The same for names that stand in for each other, which only the output has.
std::string standInName(const NameIndex& outputs, const GraphDesc& bottom, unsigned int outputUid) {
    const auto output = findOutput(bottom.outputs, outputUid);
    if (output == bottom.outputs.end()) return "-";
    for (const char* name : {"specular", "specularcolor", "specularlevel", "glossiness", "roughness", "bump",
                             "height", "displacement"}) {
        const auto found = outputs.find(name);
        if (found != outputs.end() && found->second == outputUid)
            return std::string("\"") + name + "\" standing in for it";
    }
    return "being the only candidate";
}

} // namespace

void explainStacking(std::ostream& out, const PackageFile& bottom, const PackageFile& top,
                     const kvSubstance::Substance& material) {
    const NameIndex outputs = namesOfOutputs(bottom.graph());
    const NameIndex inputs = namesOfImageInputs(top.graph());
    const auto& connections = material.getPackageStackDesc()->connections();
    out << connections.size() << " connections from " << bottom.name << " to " << top.name << "\n";
    Table table({"output", "usage", "feeds input", "connected by"});
    for (const auto& [outputUid, inputUid] : connections) {
        const auto output = findOutput(bottom.graph().outputs, outputUid);
        const InputDescBase* const input = findInput(top.graph().inputs, inputUid);
        if (output == bottom.graph().outputs.end() || !input) continue;
        std::string name = connectingName(inputs, outputs, inputUid, outputUid);
        if (name.empty()) name = standInName(outputs, bottom.graph(), outputUid);
        table.add({output->identifier, usageOf(*output), input->identifier, name});
    }
    table.print(out, 2);

    const auto isFed = [&](unsigned int uid) {
        return std::any_of(connections.begin(), connections.end(),
                           [uid](const auto& connection) { return connection.second == uid; });
    };
    for (const auto& input : top.graph().inputs)
        if (input->isImage() && !isFed(input->uid)) out << "  nothing feeds input " << input->identifier << "\n";
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
