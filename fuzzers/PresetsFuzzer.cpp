// Any text as a presets document. It says true when and only when it appended something, keeps what was
// there, and every value it gives can be tried on an input of the type it names. The same element read for a
// graph goes by the graph's inputs.
#include "framework/description/GraphDesc.h"
#include "framework/render/GraphInstance.h"
#include "fuzzers/Fuzzing.h"
#include "support/GuardedXml.h"

#include <string>
#include <vector>

namespace {

using namespace fuzzing;
using namespace SubstanceAir;
namespace Math = SubstanceAir::Math;

template <class T>
void addInput(GraphDesc& graph, unsigned int type) {
    auto input = std::make_unique<InputDescNumerical<T>>();
    input->uid = type;
    input->type = type;
    input->identifier = std::to_string(type);
    graph.inputs.push_back(std::move(input));
}

// An input of each type; its uid is the type.
GraphDesc& everyType() {
    static GraphDesc* const graph = [] {
        auto* const made = new GraphDesc;
        made->packageUrl = "pkg:/owner";
        addInput<float>(*made, Float);
        addInput<Math::Vector2<float>>(*made, Float2);
        addInput<Math::Vector3<float>>(*made, Float3);
        addInput<Math::Vector4<float>>(*made, Float4);
        addInput<int>(*made, Integer);
        addInput<Math::Vector2<int>>(*made, Integer2);
        addInput<Math::Vector3<int>>(*made, Integer3);
        addInput<Math::Vector4<int>>(*made, Integer4);
        return made;
    }();
    return *graph;
}

// Refused, or taken and written as text that is taken again.
void tryValue(const PresetInputValue& value) {
    static GraphInstance* const instance = new GraphInstance(everyType());
    auto* const input =
        dynamic_cast<InputInstanceNumericalBase*>(instance->findInput(std::to_string(value.type)));
    if (!input) return;
    const bool isTaken = input->setValueFromText(value.value);
    require(!isTaken || input->setValueFromText(input->valueAsText()), "a value's own text is taken");
}

void checkForOwner(const std::string& text) {
    const auto document = support::parseXmlDocument(text.c_str(), TIXML_ENCODING_UTF8);
    const TiXmlElement* const root = document ? document->RootElement() : nullptr;
    if (!root) return;
    std::vector<Preset> presets;
    parsePresets(presets, *root, &everyType());
    for (const Preset& preset : presets) {
        require(preset.packageUrl == everyType().packageUrl, "presets of a graph bear its URL");
        for (const PresetInputValue& value : preset.inputValues) {
            const bool isKnown = findInput(everyType().inputs, value.uid) != nullptr;
            require(value.type == (isKnown ? value.uid : UnknownInputType), "types are the graph's");
            tryValue(value);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = textOf(data, size);
    std::vector<Preset> presets(1);
    presets[0].label = "first";
    const bool isAppended = parsePresetsDocument(presets, text.c_str());
    require(isAppended == (presets.size() > 1), "the result tells whether presets were appended");
    require(presets[0].label == "first", "what was there stays");
    for (const Preset& preset : presets)
        for (const PresetInputValue& value : preset.inputValues) tryValue(value);
    checkForOwner(text);
    return 0;
}
