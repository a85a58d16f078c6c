// Small sound programs for tests.
#pragma once

#include "embedded/nodes/NodeKind.h"
#include "embedded/program/Program.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace embedded {

// One number stands for each component.
inline Value makeValue(ValueType type, const std::vector<double>& numbers = {0}) {
    Value value;
    value.type = type;
    for (std::size_t i = 0; i < static_cast<std::size_t>(componentCount(type)); ++i) {
        const double number = numbers.size() == 1 ? numbers[0] : numbers.at(i);
        if (isInteger(type))
            value.integers[i] = static_cast<std::int32_t>(number);
        else
            value.floats[i] = static_cast<float>(number);
    }
    return value;
}

inline ProgramInput makeInput(std::uint32_t uid, ValueType type, const std::vector<double>& numbers = {0},
                              SystemInput role = SystemInput::None) {
    return {uid, type, role, makeValue(type, numbers)};
}

inline Binding constantly(const Value& constant) {
    return {Binding::constantOnly, constant, 1.0f, 0.0f};
}

inline Binding boundTo(std::int32_t input, float scale = 1.0f, float offset = 0.0f) {
    return {input, {}, scale, offset};
}

inline Binding& parameter(ProgramNode& node, std::string_view name) {
    const auto& infos = findNodeKind(node.kind)->parameters;
    std::size_t index = 0;
    while (infos.at(index).name != name) ++index; // throws for a misspelt name
    return node.parameters[index];
}

using Parameters = std::map<std::string, std::vector<double>>;

// Parameters that are not named have their defaults.
inline ProgramNode makeNode(std::string_view kindName, std::vector<std::int32_t> sources = {},
                            const Parameters& parameters = {}) {
    const NodeKind& kind = *findNodeKind(kindName);
    ProgramNode node;
    node.kind = kind.code;
    node.sources = std::move(sources);
    node.sources.resize(kind.ports.size(), ProgramNode::unconnected);
    for (const ParameterInfo& info : kind.parameters) {
        const auto& numbers = info.defaultValue;
        node.parameters.push_back(constantly(makeValue(info.type, {numbers.begin(), numbers.end()})));
    }
    for (const auto& [name, numbers] : parameters) {
        Value& constant = parameter(node, name).constant;
        constant = makeValue(constant.type, numbers);
    }
    node.resolution = constantly(makeValue(ValueType::Integer2, {8, 8}));
    node.seed = constantly(makeValue(ValueType::Integer));
    return node;
}

// With a parameter that an input drives.
inline ProgramNode makeBound(std::string_view kindName, std::vector<std::int32_t> sources,
                             std::string_view name, const Binding& binding) {
    ProgramNode node = makeNode(kindName, std::move(sources));
    parameter(node, name) = binding;
    return node;
}

// A picture under an image: inputs of several types, each bound.
inline Program sampleProgram() {
    Program program;
    program.uid = 77;
    program.inputs = {makeInput(1, ValueType::Integer2, {9, 10}, SystemInput::Resolution),
                      makeInput(2, ValueType::Integer, {3}, SystemInput::Seed),
                      makeInput(3, ValueType::Float, {0.25}), makeInput(4, ValueType::Image),
                      makeInput(5, ValueType::Float3, {0.5, 0.25, 1})};
    program.nodes = {makeBound("uniform", {}, "value", boundTo(4)),
                     makeBound("imageInput", {}, "image", boundTo(3)),
                     makeBound("blend", {0, 1}, "opacity", boundTo(2, 2.0f, -0.5f))};
    for (ProgramNode& node : program.nodes) {
        node.resolution = boundTo(0);
        node.seed = boundTo(1);
    }
    program.outputs = {{11, 2, 32, 1}, {12, 0, 66, 15}};
    return program;
}

} // namespace embedded
