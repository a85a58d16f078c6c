#include "tools/Preset.h"

#include "embedded/compiler/Literal.h"
#include "embedded/compiler/Suggestion.h"
#include "framework/render/PackageStackDesc.h"
#include "tools/Failure.h"
#include "tools/InputValue.h"

#include <algorithm>

namespace tool {
namespace {

using SubstanceAir::Preset;
using SubstanceAir::PresetInputValue;

const Preset* findPreset(const SubstanceAir::GraphDesc* graph, const std::string& label) {
    if (!graph) return nullptr;
    const auto& presets = graph->presets;
    const auto found = std::find_if(presets.begin(), presets.end(),
                                    [&](const Preset& preset) { return preset.label == label; });
    return found == presets.end() ? nullptr : &*found;
}

bool removePrefix(std::string& name, const std::string& prefix) {
    if (name.compare(0, prefix.size(), prefix) != 0) return false;
    name.erase(0, prefix.size());
    return true;
}

const Preset& choosePreset(const std::string& wanted, const MaterialGraphs& graphs) {
    std::string label = wanted;
    const bool isWhole = findPreset(graphs.bottom, wanted) || findPreset(graphs.top, wanted);
    const bool isBottom = !isWhole && removePrefix(label, "bottom:");
    const bool isTop = !isWhole && !isBottom && removePrefix(label, "top:");
    const Preset* const ofBottom = isTop ? nullptr : findPreset(graphs.bottom, label);
    const Preset* const ofTop = isBottom ? nullptr : findPreset(graphs.top, label);
    if (ofBottom && ofTop)
        throw Failure("--preset " + wanted + ": both packages have a preset of that name; write \"bottom:" +
                      label + "\" or \"top:" + label + "\"");
    if (ofBottom || ofTop) return ofBottom ? *ofBottom : *ofTop;

    std::vector<std::string> labels;
    for (const auto* const graph : {isTop ? nullptr : graphs.bottom, isBottom ? nullptr : graphs.top})
        if (graph)
            for (const Preset& preset : graph->presets) labels.push_back(preset.label);
    throw Failure("--preset " + wanted + ": there is no such preset" + embedded::suggestion(label, labels));
}

// The material's input that a preset's value is for: by uid, or, where two "$" inputs became one, by
// identifier. Null when it has none.
kvSubstance::SubstanceInput* findTarget(const PresetInputValue& value,
                                        const kvSubstance::Substance& material) {
    if (auto* const input = dynamic_cast<kvSubstance::SubstanceInput*>(material.getEntity(value.uid)))
        return input;
    if (!material.getPackageStackDesc()) return nullptr;
    const auto& fused = material.getPackageStackDesc()->fusedInputs();
    const bool isFused =
        std::any_of(fused.begin(), fused.end(), [&](const auto& pair) { return pair.second == value.uid; });
    return isFused ? material.getInput(value.identifier.c_str()) : nullptr;
}

// Why the value cannot be set; empty when it was.
std::string applyValue(const PresetInputValue& value, const kv::Reference<kvSubstance::Substance>& material) {
    if (value.type == SubstanceAir::UnknownInputType) return "the package has no input of that uid";
    if (value.type == SubstanceAir::Image) return "images cannot be set";
    kvSubstance::SubstanceInput* const input = findTarget(value, *material);
    if (!input) return "the material has no such input";
    const embedded::ValueType type = valueTypeOf(input->getType());
    if (static_cast<unsigned int>(type) != value.type) return "its type differs from the material's input";
    // The library carries values to the engine's side by identifier, so it would mistake one for the other.
    if (material->getInput(input->getIdentifier()) != input)
        return "both packages have an input of that name";
    const auto parsed = embedded::parseValue(type, value.value);
    if (!parsed)
        return "expected " + embedded::expectedValue(type) + ", not " + embedded::quoted(value.value);
    setInputValue(material, *input, *parsed);
    return "";
}

} // namespace

std::vector<std::string> applyPreset(const std::string& name, const MaterialGraphs& graphs,
                                     const kv::Reference<kvSubstance::Substance>& material) {
    std::vector<std::string> leftOut;
    for (const PresetInputValue& value : choosePreset(name, graphs).inputValues) {
        const std::string reason = applyValue(value, material);
        if (reason.empty()) continue;
        std::string remark = "--preset " + name + ": left out ";
        remark += value.identifier.empty() ? "uid " + std::to_string(value.uid) : value.identifier;
        leftOut.push_back(remark.append(": ").append(reason));
    }
    return leftOut;
}

} // namespace tool
