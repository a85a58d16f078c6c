#include "embedded/compiler/SourceReader.h"

#include "embedded/compiler/Literal.h"
#include "embedded/compiler/Suggestion.h"
#include "embedded/program/PixelFormat.h"
#include "embedded/program/Verifier.h"

#include <algorithm>

namespace embedded {

namespace {

constexpr std::int32_t maxItemValue = 35; // hosts show no more items

Value wholeNumber(ValueType type, int number) {
    Value value;
    value.type = type;
    for (int i = 0; i < componentCount(type); ++i) {
        const auto index = static_cast<std::size_t>(i);
        if (isInteger(type))
            value.integers[index] = number;
        else
            value.floats[index] = static_cast<float>(number);
    }
    return value;
}

bool isWithin(const Value& value, const std::optional<Value>& minimum, const std::optional<Value>& maximum) {
    for (int i = 0; i < componentCount(value.type); ++i) {
        if (minimum && component(value, i) < component(*minimum, i)) return false;
        if (maximum && component(value, i) > component(*maximum, i)) return false;
    }
    return true;
}

// A value of the input, within its range and, for a combo box, among its items.
void checkValue(ElementReader& reader, const SourceAttribute& attribute, const SourceInput& input,
                const Value& value) {
    if (!isWithin(value, input.minimum, input.maximum)) {
        reader.error(attribute, "lies outside the input's range, " +
                                    (input.minimum ? "from " + formatValue(*input.minimum) + " " : "") +
                                    (input.maximum ? "to " + formatValue(*input.maximum) : "upwards"));
    } else if (!input.items.empty() &&
               std::none_of(input.items.begin(), input.items.end(),
                            [&](const SourceItem& item) { return item.value == value.integers[0]; })) {
        reader.error(attribute, "is the value of no item");
    }
}

std::optional<Value> readValue(ElementReader& reader, const SourceAttribute& attribute, ValueType type) {
    if (type == ValueType::Image) {
        reader.error(attribute, "images have no values; leave it out");
        return std::nullopt;
    }
    const auto value = parseValue(type, attribute.value);
    if (!value)
        reader.error(attribute, "expected " + expectedValue(type) + ", found " + quoted(attribute.value));
    return value;
}

void readItems(ElementReader& reader, SourceInput& input, Diagnostics& diagnostics) {
    for (const TiXmlElement* child : reader.children({"item"})) {
        ElementReader item(*child, diagnostics);
        const auto value = item.require("value");
        const auto text = item.require("text");
        item.children({});
        item.finishAttributes();
        if (!value || !text) continue;
        const auto number = parseInteger(value->value);
        const bool isTaken = std::any_of(input.items.begin(), input.items.end(),
                                         [&](const SourceItem& other) { return other.value == number; });
        if (!number || *number < 0 || *number > maxItemValue) {
            item.error(*value, "expected a whole number from 0 to 35, found " + quoted(value->value));
        } else if (isTaken) {
            item.error(*value, "an item above has this value already");
        } else {
            input.items.push_back({*number, text->value});
        }
    }
}

void readRole(ElementReader& reader, SourceInput& input) {
    if (input.identifier.empty() || input.identifier.front() != '$') return;
    const bool isResolution = input.identifier == "$resolution";
    if (!isResolution && input.identifier != "$seed")
        return reader.error("is no input that the engine knows" +
                            suggestion(input.identifier, {"$resolution", "$seed"}));
    input.role = isResolution ? SystemInput::Resolution : SystemInput::Seed;
    const ValueType wanted = isResolution ? ValueType::Integer2 : ValueType::Integer;
    if (input.type && *input.type != wanted) {
        reader.error(std::string("has to have the type ") + nameOf(wanted));
        input.type.reset();
    }
}

const Widget* impliedWidget(const SourceInput& input, bool isColour) {
    if (input.type == ValueType::Image) return findWidget("image");
    if (!input.items.empty()) return findWidget("combobox");
    if (isColour) return findWidget("color");
    return input.role == SystemInput::None ? findWidget("slider") : nullptr;
}

void readWidget(ElementReader& reader, SourceInput& input, bool isColour) {
    const auto attribute = reader.take("widget");
    input.widget = attribute ? findWidget(attribute->value) : impliedWidget(input, isColour);
    if (attribute && !input.widget)
        return reader.error(*attribute, quoted(attribute->value) + " is no widget" +
                                            suggestion(attribute->value, widgetNames()));
    if (input.widget && input.type && !fits(*input.widget, *input.type))
        return reader.error(std::string("a ") + nameOf(*input.type) + " cannot have the widget " +
                            input.widget->name);
    const bool isComboBox = input.widget && std::string_view(input.widget->name) == "combobox";
    if (isComboBox && input.items.empty()) reader.error("a combo box needs item elements");
    if (!isComboBox && !input.items.empty()) reader.error("items are for the widget combobox");
}

// The range that goes without saying.
void impliedRange(SourceInput& input) {
    std::optional<Value> low;
    std::optional<Value> high;
    const std::string_view widget = input.widget ? input.widget->name : "";
    if (widget == "color" || widget == "togglebutton") {
        low = wholeNumber(*input.type, 0);
        high = wholeNumber(*input.type, 1);
    } else if (widget == "combobox" && !input.items.empty()) {
        const auto [least, most] =
            std::minmax_element(input.items.begin(), input.items.end(),
                                [](const SourceItem& a, const SourceItem& b) { return a.value < b.value; });
        low = wholeNumber(*input.type, least->value);
        high = wholeNumber(*input.type, most->value);
    } else if (input.role == SystemInput::Resolution) {
        low = wholeNumber(*input.type, 0);
        high = wholeNumber(*input.type, maxResolution);
    }
    if (!input.minimum) input.minimum = low;
    if (!input.maximum) input.maximum = high;
}

void readNumbers(ElementReader& reader, SourceInput& input, const std::optional<SourceAttribute>& initial) {
    const auto read = [&](const std::optional<SourceAttribute>& attribute) {
        return attribute ? readValue(reader, *attribute, *input.type) : std::nullopt;
    };
    const auto minimum = reader.take("min");
    const auto maximum = reader.take("max");
    const bool hasRange = minimum && maximum;
    input.minimum = read(minimum);
    input.maximum = read(maximum);
    input.step = read(reader.take("step"));
    input.defaultValue = wholeNumber(*input.type, 0);
    if (input.widget && input.widget->needsRange && !hasRange)
        reader.error(std::string("the widget ") + input.widget->name + " needs min and max");
    impliedRange(input);
    if (input.minimum && input.maximum && !isWithin(*input.minimum, std::nullopt, input.maximum)) {
        reader.error("min lies above max");
    } else if (initial) {
        const auto value = readValue(reader, *initial, *input.type);
        if (!value) return;
        input.defaultValue = *value;
        checkValue(reader, *initial, input, *value);
    } else if (*input.type != ValueType::Image) {
        const SourceAttribute zero{"default", "0", input.place};
        checkValue(reader, zero, input, input.defaultValue);
    }
}

SourceInput readInput(const TiXmlElement& element, Diagnostics& diagnostics) {
    ElementReader reader(element, diagnostics);
    SourceInput input;
    input.place = reader.place();
    input.identifier = reader.requireIdentifier("identifier", true);
    if (const auto type = reader.require("type")) {
        input.type = findValueType(type->value);
        if (!input.type)
            reader.error(*type,
                         quoted(type->value) + " is no type" + suggestion(type->value, valueTypeNames()));
    }
    input.label = reader.text("label");
    input.description = reader.text("description");
    if (const auto clamp = reader.take("clamp")) {
        input.clamp = clamp->value == "on";
        if (!input.clamp && clamp->value != "off")
            reader.error(*clamp, "expected on or off, found " + quoted(clamp->value));
    }
    readRole(reader, input);
    readItems(reader, input, diagnostics);
    const auto initial = reader.take("default");
    readWidget(reader, input, initial && isColourText(initial->value));
    if (input.type) {
        readNumbers(reader, input, initial);
    } else {
        for (const char* name : {"min", "max", "step"}) reader.take(name);
    }
    reader.finishAttributes();
    return input;
}

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
    if (const Item* first = findNamed(items, name, item.*name))
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
        graph.presets.push_back(readPreset(*preset, graph, diagnostics));
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
