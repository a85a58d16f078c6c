#include "embedded/compiler/GraphProgram.h"

#include "embedded/compiler/Literal.h"
#include "embedded/compiler/Suggestion.h"
#include "embedded/compiler/Uid.h"
#include "embedded/program/Verifier.h"

#include <algorithm>
#include <functional>
#include <map>
#include <queue>
#include <set>

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

// Turns the words of one graph's nodes into indexes within the graph.
class Wiring {
public:
    Wiring(const SourceGraph& wired, Diagnostics& reports)
        : graph(wired)
        , diagnostics(reports) {
        for (std::size_t i = graph.nodes.size(); i-- > 0;) nodeIndex[graph.nodes[i].name] = i;
        resolution = systemBinding(SystemInput::Resolution, ValueType::Integer2, resolutionWithoutInput);
        seed = systemBinding(SystemInput::Seed, ValueType::Integer, 0);
        for (const SourceNode& node : graph.nodes) nodes.push_back(wire(node));
        for (const SourceOutput& output : graph.outputs) outputNodes.push_back(wire(output));
    }

    std::vector<ProgramNode> nodes;                      // as in the graph; sources are indexes there
    std::vector<std::optional<std::size_t>> outputNodes; // one for each output; absent after an error

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
        return quoted(name) + " is no node of this graph" +
               suggestion(name, namesOf(graph.nodes, &SourceNode::name));
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
        if (isColourText(attribute.value) && !takesSrgb) value = linearFromSrgb(*value);
        for (int i = 0; i < componentCount(info.type); ++i)
            if (component(*value, i) < info.minimum || component(*value, i) > info.maximum)
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

using NodeIndexes = std::vector<std::size_t>;

// Sources first, and otherwise as written (A. B. Kahn (1962), "Topological sorting of large networks").
// Cycles are reported, each once, and then treated as if they were none.
class Ordering {
public:
    Ordering(const SourceGraph& ordered, const std::vector<ProgramNode>& wired, Diagnostics& reports)
        : graph(ordered)
        , nodes(wired)
        , diagnostics(reports)
        , readers(wired.size())
        , waitingFor(wired.size())
        , isPlaced(wired.size()) {
        for (std::size_t i = 0; i < nodes.size(); ++i)
            for (const std::int32_t source : nodes[i].sources) {
                if (source == ProgramNode::unconnected) continue;
                readers[static_cast<std::size_t>(source)].push_back(i);
                ++waitingFor[i];
            }
    }

    NodeIndexes run() && {
        for (std::size_t i = 0; i < nodes.size(); ++i)
            if (waitingFor[i] == 0) ready.push(i);
        placeReady();
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            if (isPlaced[i]) continue;
            const NodeIndexes cycle = findCycle(i);
            report(cycle);
            for (const std::size_t node : cycle) place(node);
            placeReady();
        }
        return std::move(order);
    }

private:
    void placeReady() {
        while (!ready.empty()) {
            const std::size_t node = ready.top();
            ready.pop();
            place(node);
        }
    }

    void place(std::size_t node) {
        if (isPlaced[node]) return;
        isPlaced[node] = true;
        order.push_back(node);
        for (const std::size_t reader : readers[node])
            if (--waitingFor[reader] == 0) ready.push(reader);
    }

    // Whoever still waits has a source that still waits, so following those ends in a circle.
    NodeIndexes findCycle(std::size_t node) const {
        NodeIndexes path;
        std::vector<bool> isOnPath(nodes.size());
        while (!isOnPath[node]) {
            isOnPath[node] = true;
            path.push_back(node);
            for (const std::int32_t source : nodes[node].sources) {
                if (source == ProgramNode::unconnected || isPlaced[static_cast<std::size_t>(source)])
                    continue;
                node = static_cast<std::size_t>(source);
                break;
            }
        }
        path.erase(path.begin(), std::find(path.begin(), path.end(), node));
        std::rotate(path.begin(), std::min_element(path.begin(), path.end()), path.end());
        return path;
    }

    void report(const NodeIndexes& cycle) {
        std::string text;
        for (const std::size_t node : cycle) text += quoted(graph.nodes[node].name) + " reads ";
        diagnostics.error(graph.nodes[cycle.front()].place, "node " + quoted(graph.nodes[cycle.front()].name),
                          "depends on itself: " + text + quoted(graph.nodes[cycle.front()].name));
    }

    const SourceGraph& graph;
    const std::vector<ProgramNode>& nodes;
    Diagnostics& diagnostics;
    std::vector<NodeIndexes> readers;
    std::vector<std::size_t> waitingFor;
    std::vector<bool> isPlaced;
    std::priority_queue<std::size_t, NodeIndexes, std::greater<>> ready;
    NodeIndexes order;
};

// The nodes that one node's result depends on, itself included.
std::vector<bool> dependencies(const std::vector<ProgramNode>& nodes, const NodeIndexes& order,
                               std::optional<std::size_t> result) {
    std::vector<bool> needed(nodes.size());
    if (result) needed[*result] = true;
    for (auto node = order.rbegin(); node != order.rend(); ++node) {
        if (!needed[*node]) continue;
        for (const std::int32_t source : nodes[*node].sources)
            if (source != ProgramNode::unconnected) needed[static_cast<std::size_t>(source)] = true;
    }
    return needed;
}

// The inputs that make a difference to the node's result.
std::set<std::int32_t> inputsOf(const ProgramNode& node) {
    std::set<std::int32_t> inputs = {node.resolution.input};
    for (const Binding& binding : node.parameters) inputs.insert(binding.input);
    const NodeKind* kind = findNodeKind(node.kind);
    if (kind && findNamedInfo(kind->parameters, "seed")) inputs.insert(node.seed.input);
    inputs.erase(Binding::constantOnly);
    return inputs;
}

void appendInputs(const SourceGraph& graph, Program& program) {
    for (const SourceInput& input : graph.inputs) {
        ProgramInput appended;
        appended.uid = inputUid(graph, input);
        appended.type = input.type.value_or(ValueType::Float);
        appended.role = input.role;
        appended.defaultValue = input.defaultValue;
        program.inputs.push_back(appended);
    }
}

// Gives the new index of each node of the graph.
NodeIndexes appendNodes(const std::vector<ProgramNode>& nodes, const NodeIndexes& order,
                        const std::vector<bool>& isUsed, std::int32_t firstInput, Program& program) {
    NodeIndexes newIndex(nodes.size());
    const auto moveInput = [&](Binding& binding) {
        if (binding.input != Binding::constantOnly) binding.input += firstInput;
    };
    for (const std::size_t index : order) {
        if (!isUsed[index]) continue;
        ProgramNode node = nodes[index];
        for (std::int32_t& source : node.sources)
            if (source != ProgramNode::unconnected)
                source = static_cast<std::int32_t>(newIndex[static_cast<std::size_t>(source)]);
        std::for_each(node.parameters.begin(), node.parameters.end(), moveInput);
        moveInput(node.resolution);
        moveInput(node.seed);
        newIndex[index] = program.nodes.size();
        program.nodes.push_back(std::move(node));
    }
    return newIndex;
}

void warnOfUnused(const SourceGraph& graph, const std::vector<bool>& isUsed, const AlteredOutputs& altered,
                  Diagnostics& diagnostics) {
    for (std::size_t i = 0; i < graph.nodes.size(); ++i)
        if (!isUsed[i])
            diagnostics.warning(graph.nodes[i].place, "node " + quoted(graph.nodes[i].name),
                                "no output depends on it, so it is left out");
    for (std::size_t i = 0; i < graph.inputs.size(); ++i)
        if (altered[i].empty())
            diagnostics.warning(graph.inputs[i].place, "input " + quoted(graph.inputs[i].identifier),
                                "alters no output");
}

} // namespace

std::uint32_t inputUid(const SourceGraph& graph, const SourceInput& input) {
    return deriveUid({graph.url, "input", input.identifier});
}

std::uint32_t outputUid(const SourceGraph& graph, const SourceOutput& output) {
    return deriveUid({graph.url, "output", output.identifier});
}

AlteredOutputs appendGraph(const SourceGraph& graph, Program& program, Diagnostics& diagnostics) {
    const Wiring wiring(graph, diagnostics);
    const NodeIndexes order = Ordering(graph, wiring.nodes, diagnostics).run();

    AlteredOutputs altered(graph.inputs.size());
    std::vector<bool> isUsed(graph.nodes.size());
    for (std::size_t output = 0; output < graph.outputs.size(); ++output) {
        const auto needed = dependencies(wiring.nodes, order, wiring.outputNodes[output]);
        std::set<std::int32_t> inputs;
        for (std::size_t node = 0; node < needed.size(); ++node) {
            if (!needed[node]) continue;
            isUsed[node] = true;
            inputs.merge(inputsOf(wiring.nodes[node]));
        }
        for (const std::int32_t input : inputs) altered[static_cast<std::size_t>(input)].push_back(output);
    }
    if (diagnostics.hasErrors()) return altered; // what is unused may be so because of them
    warnOfUnused(graph, isUsed, altered, diagnostics);

    const auto firstInput = static_cast<std::int32_t>(program.inputs.size());
    appendInputs(graph, program);
    const NodeIndexes newIndex = appendNodes(wiring.nodes, order, isUsed, firstInput, program);
    for (std::size_t i = 0; i < graph.outputs.size(); ++i) {
        const SourceOutput& output = graph.outputs[i];
        program.outputs.push_back({outputUid(graph, output),
                                   static_cast<std::int32_t>(newIndex[*wiring.outputNodes[i]]), output.format,
                                   output.mipmaps});
    }
    return altered;
}

} // namespace embedded
