#include "embedded/compiler/Wiring.h"

#include "embedded/compiler/Literal.h"
#include "embedded/compiler/Suggestion.h"
#include "embedded/program/Verifier.h"

#include <algorithm>
#include <map>

namespace embedded {

namespace {

constexpr std::int32_t resolutionWithoutInput = 8; // 256 pixels

template <typename Info>
std::optional<std::size_t> findNamedInfo(const std::vector<Info>& infos, std::string_view name) {
    for (std::size_t i = 0; i < infos.size(); ++i)
        if (infos[i].name == name) return i;
    return std::nullopt;
}

Value defaultOf(const ParameterInfo& parameter) {
    Value value;
    value.type = parameter.type;
    for (std::size_t i = 0; i < static_cast<std::size_t>(componentCount(parameter.type)); ++i) {
        const double number = parameter.defaultValue[i];
        if (isInteger(parameter.type))
            value.integers[i] = static_cast<std::int32_t>(number);
        else
            value.floats[i] = static_cast<float>(number);
    }
    return value;
}

Binding constantBinding(ValueType type, std::int32_t number) {
    Binding binding;
    binding.constant.type = type;
    for (std::size_t i = 0; i < static_cast<std::size_t>(componentCount(type)); ++i)
        binding.constant.integers[i] = number;
    return binding;
}

// Null when there is none.
const SourceAttribute* findAttribute(const SourceNode& node, std::string_view name) {
    const auto found = std::find_if(node.attributes.begin(), node.attributes.end(),
                                    [&](const SourceAttribute& attribute) { return attribute.name == name; });
    return found == node.attributes.end() ? nullptr : &*found;
}

class GraphWiring {
public:
    GraphWiring(const SourceGraph& wired, Diagnostics& reports)
        : graph(wired)
        , diagnostics(reports) {
        for (std::size_t i = graph.nodes.size(); i-- > 0;) nodeIndex[graph.nodes[i].name] = i;
        resolution = systemBinding(SystemInput::Resolution, ValueType::Integer2, resolutionWithoutInput);
        seed = systemBinding(SystemInput::Seed, ValueType::Integer, 0);
    }

    Wiring run() {
        Wiring wiring;
        for (const SourceNode& node : graph.nodes) wiring.nodes.push_back(wire(node));
        for (const SourceOutput& output : graph.outputs) wiring.outputNodes.push_back(wire(output));
        return wiring;
    }

private:
    Binding systemBinding(SystemInput role, ValueType type, std::int32_t number) const {
        Binding binding = constantBinding(type, number);
        for (std::size_t i = 0; i < graph.inputs.size(); ++i)
            if (graph.inputs[i].role == role) binding.input = static_cast<std::int32_t>(i);
        return binding;
    }

    void error(const SourceNode& node, const SourceAttribute& attribute, std::string message) {
        diagnostics.error(attribute.place, "node " + quoted(node.name) + ", attribute " + attribute.name,
                          std::move(message));
    }

    std::optional<std::size_t> findNode(std::string_view name) const {
        const auto found = nodeIndex.find(std::string(name));
        return found == nodeIndex.end() || name.empty() ? std::nullopt : std::optional(found->second);
    }

    std::string unknownNode(const std::string& name) const {
        // Where there are very many, looking for similar names each time would take longer than all else.
        const bool hasMany = graph.nodes.size() > 1000;
        return quoted(name) + " is no node of this graph" +
               (hasMany ? "" : suggestion(name, namesOf(graph.nodes, &SourceNode::name)));
    }

    std::optional<std::size_t> wire(const SourceOutput& output) {
        if (!output.node) return std::nullopt;
        const auto node = findNode(output.node->value);
        if (!node)
            diagnostics.error(output.node->place, "output " + quoted(output.identifier) + ", attribute node",
                              unknownNode(output.node->value));
        return node;
    }

    ProgramNode wire(const SourceNode& node) {
        ProgramNode wired;
        wired.resolution = resolution;
        wired.seed = seed;
        if (!node.kind) return wired;
        wired.kind = node.kind->code;
        wired.sources.assign(node.kind->ports.size(), ProgramNode::unconnected);
        for (const ParameterInfo& parameter : node.kind->parameters)
            wired.parameters.push_back({Binding::constantOnly, defaultOf(parameter), 1.0f, 0.0f});
        for (const SourceAttribute& attribute : node.attributes) wire(node, attribute, wired);
        reportMissing(node);
        return wired;
    }

    void wire(const SourceNode& node, const SourceAttribute& attribute, ProgramNode& wired) {
        if (const auto port = findNamedInfo(node.kind->ports, attribute.name)) {
            const auto source = findNode(attribute.value);
            if (!source) return error(node, attribute, unknownNode(attribute.value));
            wired.sources[*port] = static_cast<std::int32_t>(*source);
        } else if (const auto parameter = findNamedInfo(node.kind->parameters, attribute.name)) {
            const ParameterInfo& info = node.kind->parameters[*parameter];
            Binding& binding = wired.parameters[*parameter];
            if (isInputExpression(attribute.value))
                bindInput(node, attribute, info, binding);
            else
                bindConstant(node, attribute, info, binding.constant);
        } else {
            std::vector<std::string> names;
            for (const PortInfo& known : node.kind->ports) names.emplace_back(known.name);
            for (const ParameterInfo& known : node.kind->parameters) names.emplace_back(known.name);
            error(node, attribute,
                  std::string("the kind ") + node.kind->name + " has no such port or parameter" +
                      suggestion(attribute.name, names));
        }
    }

    void reportMissing(const SourceNode& node) {
        const std::string element = "node " + quoted(node.name);
        for (const PortInfo& port : node.kind->ports)
            if (port.required && !findAttribute(node, port.name))
                diagnostics.error(node.place, element,
                                  std::string("needs the port ") + port.name + "; name the node to connect");
        for (const ParameterInfo& parameter : node.kind->parameters)
            if (parameter.type == ValueType::Image && !findAttribute(node, parameter.name))
                diagnostics.error(node.place, element,
                                  std::string("needs the attribute ") + parameter.name +
                                      "; name an image input in braces");
    }

    void bindInput(const SourceNode& node, const SourceAttribute& attribute, const ParameterInfo& info,
                   Binding& binding) {
        const auto expression = parseInputExpression(attribute.value);
        if (!expression)
            return error(node, attribute,
                         "expected an input in braces, such as {amount} or {amount} * 2 + 0.5, found " +
                             quoted(attribute.value));
        const SourceInput* input = findNamed(graph.inputs, &SourceInput::identifier, expression->input);
        if (!input)
            return error(node, attribute,
                         quoted(expression->input) + " is no input of this graph" +
                             suggestion(expression->input, namesOf(graph.inputs, &SourceInput::identifier)));
        if (!input->type) return;
        if (!canDrive(*input->type, info.type))
            return error(node, attribute,
                         std::string("an input of type ") + nameOf(*input->type) +
                             " cannot drive a parameter of type " + nameOf(info.type));
        const bool isScaled = expression->scale != 1.0f || expression->offset != 0.0f;
        if (isScaled && (isInteger(info.type) || info.type == ValueType::Image))
            return error(node, attribute, "only float parameters take a factor and an offset");
        warnOfEncoding(node, attribute, *input);
        binding.input = static_cast<std::int32_t>(input - graph.inputs.data());
        binding.scale = expression->scale;
        binding.offset = expression->offset;
    }

    // Colour widgets show sRGB colours, and nodes take linear ones unless told otherwise.
    void warnOfEncoding(const SourceNode& node, const SourceAttribute& attribute, const SourceInput& input) {
        const bool isColour = input.widget && std::string_view(input.widget->name) == "color";
        if (!isColour || !findNamedInfo(node.kind->parameters, "encoding") || findAttribute(node, "encoding"))
            return;
        diagnostics.warning(attribute.place, "node " + quoted(node.name) + ", attribute " + attribute.name,
                            "colours that people choose are sRGB-encoded; write encoding=\"srgb\" here, or "
                            "encoding=\"linear\" if the numbers are meant as they are");
    }

    void bindConstant(const SourceNode& node, const SourceAttribute& attribute, const ParameterInfo& info,
                      Value& constant) {
        if (info.type == ValueType::Image)
            return error(node, attribute,
                         "expected an image input in braces, found " + quoted(attribute.value));
        if (!info.choices.empty()) {
            const auto choice = std::find(info.choices.begin(), info.choices.end(), attribute.value);
            if (choice == info.choices.end())
                return error(node, attribute,
                             quoted(attribute.value) + " is none of the choices" +
                                 suggestion(attribute.value, {info.choices.begin(), info.choices.end()}));
            constant.integers[0] = static_cast<std::int32_t>(choice - info.choices.begin());
            return;
        }
        auto value = parseValue(info.type, attribute.value);
        if (!value)
            return error(node, attribute,
                         "expected " + expectedValue(info.type) + ", or an input in braces, found " +
                             quoted(attribute.value));
        const SourceAttribute* encoding = findAttribute(node, "encoding");
        const bool takesSrgb = encoding && encoding->value == "srgb";
        if (isColourText(attribute.value) && encoding && encoding->value.find('{') != std::string::npos)
            return error(node, attribute,
                         "is a colour as people see it, while the encoding changes; write numbers, or drive "
                         "the colour with an input");
        if (isColourText(attribute.value) && !takesSrgb) value = linearFromSrgb(*value);
        const auto bound = [&](double number) { // as floats have it
            return isInteger(info.type) ? number : static_cast<double>(static_cast<float>(number));
        };
        for (int i = 0; i < componentCount(info.type); ++i)
            if (component(*value, i) < bound(info.minimum) || component(*value, i) > bound(info.maximum))
                return error(node, attribute,
                             "lies outside the range from " + formatNumber(info.minimum) + " to " +
                                 formatNumber(info.maximum));
        constant = *value;
    }

    const SourceGraph& graph;
    Diagnostics& diagnostics;
    std::map<std::string, std::size_t> nodeIndex;
    Binding resolution;
    Binding seed;
};

} // namespace

Wiring wireGraph(const SourceGraph& graph, Diagnostics& diagnostics) {
    return GraphWiring(graph, diagnostics).run();
}

} // namespace embedded
