// Small sound programs for tests.
#pragma once

#include "embedded/nodes/NodeKind.h"
#include "embedded/program/Program.h"

#include <string_view>
#include <vector>

namespace embedded {

inline Value integers(std::vector<std::int32_t> components) {
    constexpr ValueType types[] = {ValueType::Integer, ValueType::Integer2, ValueType::Integer3,
                                   ValueType::Integer4};
    Value value;
    value.type = types[components.size() - 1];
    for (std::size_t i = 0; i < components.size(); ++i) value.integers[i] = components[i];
    return value;
}

inline Value floats(std::vector<float> components) {
    Value value;
    value.type = static_cast<ValueType>(components.size() - 1);
    for (std::size_t i = 0; i < components.size(); ++i) value.floats[i] = components[i];
    return value;
}

inline Value image() {
    Value value;
    value.type = ValueType::Image;
    return value;
}

inline ProgramInput makeInput(std::uint32_t uid, const Value& value, SystemInput role = SystemInput::None) {
    return {uid, value.type, role, value};
}

inline Binding boundTo(std::int32_t input, float scale = 1.0f, float offset = 0.0f) {
    return {input, {}, scale, offset};
}

// All parameters have their defaults.
inline ProgramNode makeNode(std::string_view kindName, std::vector<std::int32_t> sources = {}) {
    const NodeKind& kind = *findNodeKind(kindName);
    ProgramNode node;
    node.kind = kind.code;
    node.sources = std::move(sources);
    for (const ParameterInfo& info : kind.parameters) {
        Binding binding;
        binding.constant.type = info.type;
        for (std::size_t i = 0; i < static_cast<std::size_t>(componentCount(info.type)); ++i) {
            if (isInteger(info.type))
                binding.constant.integers[i] = static_cast<std::int32_t>(info.defaultValue[i]);
            else
                binding.constant.floats[i] = static_cast<float>(info.defaultValue[i]);
        }
        node.parameters.push_back(binding);
    }
    node.resolution.constant = integers({8, 8});
    node.seed.constant = integers({0});
    return node;
}

inline Binding& parameter(ProgramNode& node, std::string_view name) {
    const auto& infos = findNodeKind(node.kind)->parameters;
    std::size_t index = 0;
    while (infos.at(index).name != name) ++index; // throws for a misspelt name
    return node.parameters[index];
}

// A picture under an image: inputs of several types, each bound.
inline Program sampleProgram() {
    Program program;
    program.uid = 77;
    program.inputs = {makeInput(1, integers({9, 10}), SystemInput::Resolution),
                      makeInput(2, integers({3}), SystemInput::Seed), makeInput(3, floats({0.25f})),
                      makeInput(4, image()), makeInput(5, floats({0.5f, 0.25f, 1.0f}))};
    program.nodes = {makeNode("uniform"), makeNode("imageInput", {-1}), makeNode("blend", {0, 1, -1})};
    for (ProgramNode& node : program.nodes) {
        node.resolution = boundTo(0);
        node.seed = boundTo(1);
    }
    parameter(program.nodes[0], "value") = boundTo(4);
    parameter(program.nodes[1], "image") = boundTo(3);
    parameter(program.nodes[2], "opacity") = boundTo(2, 2.0f, -0.5f);
    program.outputs = {{11, 2, 32, 1}, {12, 0, 66, 15}};
    return program;
}

} // namespace embedded
