// Any text as a presets document. It says true when and only when it appended something, keeps what was
// there, and every value it gives can be tried on an input of the type it names. The same element read for a
// graph goes by the graph's inputs.
#include "fuzzers/Model.h"
#include "support/GuardedXml.h"

using namespace fuzzing;
using namespace SubstanceAir;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const GraphDesc* const graph = new GraphDesc(graphOfAllTypes());
    static GraphInstance* const instance = new GraphInstance(*graph);
    const std::string text = Choices(data, size).text();
    std::vector<Preset> presets(1);
    presets[0].label = "first";
    const bool isAppended = parsePresetsDocument(presets, text.c_str());
    require(isAppended == (presets.size() > 1), "the result tells whether presets were appended");
    require(presets[0].label == "first", "what was there stays");
    for (const Preset& preset : presets)
        for (const PresetInputValue& value : preset.inputValues)
            for (const auto& input : graph->inputs)
                if (input->type == value.type) tryValue(*instance, input->identifier, value.value);

    const auto document = support::parseXmlDocument(text.c_str(), TIXML_ENCODING_UTF8);
    if (!document || !document->RootElement()) return 0;
    std::vector<Preset> owned;
    parsePresets(owned, *document->RootElement(), graph);
    for (const Preset& preset : owned) {
        require(preset.packageUrl == graph->packageUrl, "presets of a graph bear its URL");
        for (const PresetInputValue& value : preset.inputValues) {
            const InputDescBase* const input = findInput(graph->inputs, value.uid);
            require(value.type == (input ? input->type : UnknownInputType), "types are the graph's");
            if (input) tryValue(*instance, input->identifier, value.value);
        }
    }
    return 0;
}
