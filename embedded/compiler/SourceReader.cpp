#include "embedded/compiler/SourceReader.h"

#include "embedded/compiler/InputReader.h"
#include "embedded/compiler/Literal.h"
#include "embedded/compiler/Suggestion.h"
#include "embedded/program/Verifier.h"

#include <algorithm>

namespace embedded {

namespace {

SourceNode readNode(const TiXmlElement& element, Diagnostics& diagnostics) {
    ElementReader reader(element, diagnostics);
    SourceNode node;
    node.place = reader.place();
    node.name = reader.requireIdentifier("name");
    if (const auto kind = reader.require("kind")) {
        node.kind = findNodeKind(std::string_view(kind->value));
        std::vector<std::string> names;
        for (const NodeKind& known : nodeKinds()) names.emplace_back(known.name);
        if (!node.kind)
            reader.error(*kind, quoted(kind->value) + " is no kind of node" + suggestion(kind->value, names));
    }
    node.attributes = reader.takeRest();
    reader.children({});
    return node;
}

SourceOutput readOutput(const TiXmlElement& element, Diagnostics& diagnostics) {
    ElementReader reader(element, diagnostics);
    SourceOutput output;
    output.place = reader.place();
    output.identifier = reader.requireIdentifier("identifier");
    output.node = reader.require("node");
    output.label = reader.text("label");
    if (const auto usage = reader.take("usage")) {
        output.usage = usage->value;
        if (!isUsage(output.usage))
            reader.error(*usage,
                         quoted(output.usage) + " is no usage" + suggestion(output.usage, usageNames()));
    } else if (isUsage(output.identifier)) {
        output.usage = output.identifier;
    }
    const auto format = reader.take("format");
    const auto code = findFormat(format ? std::string_view(format->value) : usualFormat(output.usage));
    if (code)
        output.format = *code;
    else
        reader.error(*format,
                     quoted(format->value) + " is no format" + suggestion(format->value, formatNames()));
    if (const auto mipmaps = reader.take("mipmaps")) {
        const auto levels = parseInteger(mipmaps->value);
        if (levels && *levels >= 1 && *levels <= static_cast<std::int32_t>(maxMipmaps))
            output.mipmaps = static_cast<std::uint32_t>(*levels);
        else
            reader.error(*mipmaps, "expected a whole number from 1 to 15, found " + quoted(mipmaps->value));
    }
    reader.children({});
    reader.finishAttributes();
    return output;
}

SourcePreset readPreset(const TiXmlElement& element, const SourceGraph& graph, Diagnostics& diagnostics) {
    ElementReader reader(element, diagnostics);
    SourcePreset preset;
    preset.place = reader.place();
    if (const auto label = reader.require("label")) {
        preset.label = label->value;
        reader.setName(preset.label);
    }
    preset.description = reader.text("description");
    std::vector<std::string> used;
    for (const TiXmlElement* child : reader.children({"set"})) {
        ElementReader setting(*child, diagnostics);
        const auto name = setting.require("input");
        const auto value = setting.require("value");
        setting.children({});
        setting.finishAttributes();
        if (!name || !value) continue;
        setting.setName(name->value);
        const SourceInput* input = findNamed(graph.inputs, &SourceInput::identifier, name->value);
        if (!input) {
            setting.error(*name,
                          quoted(name->value) + " is no input of this graph" +
                              suggestion(name->value, namesOf(graph.inputs, &SourceInput::identifier)));
        } else if (std::find(used.begin(), used.end(), name->value) != used.end()) {
            setting.error(*name, "the preset sets this input twice");
        } else if (input->type) {
            used.push_back(name->value);
            const auto parsed = readValue(setting, *value, *input->type);
            if (!parsed) continue;
            checkValue(setting, *value, *input, *parsed);
            preset.settings.push_back({static_cast<std::size_t>(input - graph.inputs.data()), *parsed});
        }
    }
    reader.finishAttributes();
    return preset;
}

template <typename Item>
void add(std::vector<Item>& items, Item item, std::string Item::*name, const char* what,
         Diagnostics& diagnostics) {
    if (items.size() > maxProgramNodes) return; // said already
    if (items.size() == maxProgramNodes)
        diagnostics.error(item.place, "file",
                          "has more than " + std::to_string(maxProgramNodes) +
                              " of one kind of element here");
    else if (const Item* first = findNamed(items, name, item.*name))
        diagnostics.error(item.place, std::string(what) + " " + quoted(item.*name),
                          "this name is taken by line " + std::to_string(first->place.line));
    items.push_back(std::move(item));
}

SourceGraph readGraph(const TiXmlElement& element, Diagnostics& diagnostics) {
    ElementReader reader(element, diagnostics);
    SourceGraph graph;
    graph.place = reader.place();
    if (const auto url = reader.require("url")) {
        graph.url = url->value;
        reader.setName(graph.url);
        if (std::any_of(graph.url.begin(), graph.url.end(), [](char c) { return c >= 0 && c <= ' '; }))
            reader.error(*url, "may not hold blanks; a URL such as pkg://brick_wall is expected");
    }
    graph.label = reader.text("label");
    reader.finishAttributes();

    std::vector<const TiXmlElement*> presets;
    for (const TiXmlElement* child : reader.children({"input", "node", "output", "preset"})) {
        const std::string& name = child->ValueStr();
        if (name == "input")
            add(graph.inputs, readInput(*child, diagnostics), &SourceInput::identifier, "input", diagnostics);
        else if (name == "node")
            add(graph.nodes, readNode(*child, diagnostics), &SourceNode::name, "node", diagnostics);
        else if (name == "output")
            add(graph.outputs, readOutput(*child, diagnostics), &SourceOutput::identifier, "output",
                diagnostics);
        else
            presets.push_back(child); // they may stand before the inputs that they name
    }
    for (const TiXmlElement* preset : presets)
        add(graph.presets, readPreset(*preset, graph, diagnostics), &SourcePreset::label, "preset",
            diagnostics);
    if (graph.outputs.empty()) reader.error("needs at least one output element");
    return graph;
}

} // namespace

std::vector<SourceGraph> readSource(const TiXmlDocument& document, Diagnostics& diagnostics) {
    std::vector<SourceGraph> graphs;
    const TiXmlElement* root = document.RootElement();
    if (!root || root->ValueStr() != "package") {
        diagnostics.error(root ? placeOf(*root) : SourcePlace(), "file",
                          "the root element has to be package");
        return graphs;
    }
    if (const TiXmlElement* second = root->NextSiblingElement())
        diagnostics.error(placeOf(*second), "file", "there may be only one root element");
    ElementReader reader(*root, diagnostics);
    reader.finishAttributes();
    for (const TiXmlElement* child : reader.children({"graph"}))
        add(graphs, readGraph(*child, diagnostics), &SourceGraph::url, "graph", diagnostics);
    if (graphs.empty()) reader.error("needs at least one graph element");
    return graphs;
}

} // namespace embedded
