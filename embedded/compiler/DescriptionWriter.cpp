#include "embedded/compiler/DescriptionWriter.h"

#include "embedded/compiler/Literal.h"

#include <tinyxml.h>

namespace embedded {

namespace {

TiXmlElement& append(TiXmlNode& parent, const char* name) {
    return *parent.InsertEndChild(TiXmlElement(name))->ToElement();
}

void set(TiXmlElement& element, const char* name, const std::string& value) {
    element.SetAttribute(std::string(name), value);
}

// Not by TinyXML's own conversion, which knows signed numbers only.
template <typename Number>
void setNumber(TiXmlElement& element, const char* name, Number value) {
    set(element, name, std::to_string(value));
}

void setValue(TiXmlElement& element, const char* name, const std::optional<Value>& value) {
    if (value) set(element, name, formatValue(*value));
}

void writeOutput(TiXmlElement& parent, const SourceGraph& graph, const SourceOutput& output) {
    TiXmlElement& element = append(parent, "output");
    setNumber(element, "uid", outputUid(graph, output));
    set(element, "identifier", output.identifier);
    setNumber(element, "format", output.format);
    setNumber(element, "mipmaps", output.mipmaps);
    TiXmlElement& gui = append(element, "outputgui");
    set(gui, "label", output.label.empty() ? output.identifier : output.label);
    if (!output.usage.empty()) set(append(append(gui, "channels"), "channel"), "names", output.usage);
}

// The first child is where hosts look for the range.
void writeWidget(TiXmlElement& gui, const SourceInput& input) {
    set(gui, "widget", input.widget->name);
    if (!input.widget->guiElement) return;
    TiXmlElement& element = append(gui, input.widget->guiElement);
    setValue(element, "min", input.minimum);
    setValue(element, "max", input.maximum);
    setValue(element, "step", input.step);
    set(element, "clamp", input.clamp ? "on" : "off");
    for (const SourceItem& item : input.items) {
        TiXmlElement& child = append(element, "guicomboboxitem");
        setNumber(child, "value", item.value);
        set(child, "text", item.text);
    }
}

void writeInput(TiXmlElement& parent, const SourceGraph& graph, const SourceInput& input,
                const std::vector<std::size_t>& altered) {
    TiXmlElement& element = append(parent, "input");
    setNumber(element, "uid", inputUid(graph, input));
    set(element, "identifier", input.identifier);
    setNumber(element, "type", static_cast<std::uint32_t>(*input.type));
    if (*input.type != ValueType::Image) setValue(element, "default", input.defaultValue);
    setValue(element, "min", input.minimum);
    setValue(element, "max", input.maximum);
    std::string uids;
    for (const std::size_t output : altered)
        uids += (uids.empty() ? "" : ",") + std::to_string(outputUid(graph, graph.outputs[output]));
    set(element, "alteroutputs", uids);

    TiXmlElement& gui = append(element, "inputgui");
    set(gui, "label", input.label.empty() ? input.identifier : input.label);
    if (!input.description.empty()) set(gui, "description", input.description);
    if (input.widget) writeWidget(gui, input);
}

void writePresets(TiXmlElement& parent, const SourceGraph& graph) {
    if (graph.presets.empty()) return;
    TiXmlElement& presets = append(parent, "sbspresets");
    for (const SourcePreset& preset : graph.presets) {
        TiXmlElement& element = append(presets, "sbspreset");
        set(element, "pkgurl", graph.url);
        set(element, "label", preset.label);
        set(element, "description", preset.description);
        for (const SourcePreset::Setting& setting : preset.settings) {
            const SourceInput& input = graph.inputs[setting.input];
            TiXmlElement& child = append(element, "presetinput");
            setNumber(child, "uid", inputUid(graph, input));
            set(child, "identifier", input.identifier);
            setNumber(child, "type", static_cast<std::uint32_t>(*input.type));
            setValue(child, "value", setting.value);
        }
    }
}

void writeGraph(TiXmlElement& parent, const SourceGraph& graph, const AlteredOutputs& altered) {
    TiXmlElement& element = append(parent, "graph");
    set(element, "pkgurl", graph.url);
    set(element, "label", graph.label);
    TiXmlElement& outputs = append(element, "outputs");
    setNumber(outputs, "count", graph.outputs.size());
    for (const SourceOutput& output : graph.outputs) writeOutput(outputs, graph, output);
    TiXmlElement& inputs = append(element, "inputs");
    setNumber(inputs, "count", graph.inputs.size());
    for (std::size_t i = 0; i < graph.inputs.size(); ++i)
        writeInput(inputs, graph, graph.inputs[i], altered[i]);
    writePresets(element, graph);
}

} // namespace

std::string writeDescription(std::uint32_t packageUid, const std::vector<SourceGraph>& graphs,
                             const std::vector<AlteredOutputs>& altered) {
    TiXmlDocument document;
    document.InsertEndChild(TiXmlDeclaration("1.0", "UTF-8", ""));
    TiXmlElement& root = append(document, "sbsdescription");
    setNumber(root, "asmuid", packageUid);
    TiXmlElement& list = append(root, "graphs");
    setNumber(list, "count", graphs.size());
    for (std::size_t i = 0; i < graphs.size(); ++i) writeGraph(list, graphs[i], altered[i]);

    TiXmlPrinter printer;
    printer.SetIndent("  ");
    printer.SetLineBreak("\n");
    document.Accept(&printer);
    return printer.Str();
}

} // namespace embedded
