// Writes programs for the tests of nodes and engine: a line for each node, parameters by name.
#pragma once

#include "embedded/nodes/NodeKind.h"
#include "embedded/program/Program.h"

#include <cstring>
#include <initializer_list>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace embedded {

class ProgramBuilder {
public:
    // One number is repeated in each component of a parameter.
    using Parameters = std::map<std::string, std::vector<double>>;

    explicit ProgramBuilder(int log2Width, int log2Height) { setSize(log2Width, log2Height); }

    // For the nodes that come after.
    void setSize(int log2Width, int log2Height) {
        size_.type = ValueType::Integer2;
        size_.integers = {log2Width, log2Height};
    }

    std::int32_t input(std::uint32_t uid, ValueType type, const std::vector<double>& value = {0}) {
        program.inputs.push_back({uid, type, SystemInput::None, makeValue(type, value)});
        return static_cast<std::int32_t>(program.inputs.size()) - 1;
    }

    std::int32_t node(const std::string& kindName, std::vector<std::int32_t> sources = {},
                      const Parameters& parameters = {}) {
        const NodeKind* kind = findNodeKind(kindName);
        if (!kind) throw std::invalid_argument(kindName);
        ProgramNode added;
        added.kind = kind->code;
        added.sources = std::move(sources);
        added.sources.resize(kind->ports.size(), ProgramNode::unconnected);
        for (const ParameterInfo& parameter : kind->parameters) {
            const auto given = parameters.find(parameter.name);
            const std::vector<double> defaults(parameter.defaultValue.begin(), parameter.defaultValue.end());
            Binding binding;
            binding.constant =
                makeValue(parameter.type, given == parameters.end() ? defaults : given->second);
            added.parameters.push_back(binding);
        }
        for (const auto& given : parameters) parameterIndex(*kind, given.first); // names the misspelt ones
        added.resolution.constant = size_;
        added.seed.constant.type = ValueType::Integer;
        program.nodes.push_back(std::move(added));
        return static_cast<std::int32_t>(program.nodes.size()) - 1;
    }

    void bind(std::int32_t node, const std::string& parameter, std::int32_t input, float scale = 1,
              float offset = 0) {
        ProgramNode& bound = program.nodes[static_cast<std::size_t>(node)];
        Binding& binding = bound.parameters[parameterIndex(*findNodeKind(bound.kind), parameter)];
        binding.input = input;
        binding.scale = scale;
        binding.offset = offset;
    }

    void output(std::uint32_t uid, std::int32_t node, std::int32_t format = 0, std::uint32_t mipmaps = 0) {
        program.outputs.push_back({uid, node, format, mipmaps});
    }

    static Value makeValue(ValueType type, const std::vector<double>& numbers) {
        Value value;
        value.type = type;
        for (std::size_t i = 0; i < static_cast<std::size_t>(componentCount(type)); ++i) {
            const double component = numbers.size() == 1 ? numbers[0] : numbers.at(i);
            if (isInteger(type)) {
                value.integers[i] = static_cast<std::int32_t>(component);
            } else {
                value.floats[i] = static_cast<float>(component);
            }
        }
        return value;
    }

    Program program;

private:
    static std::size_t parameterIndex(const NodeKind& kind, const std::string& name) {
        for (std::size_t i = 0; i < kind.parameters.size(); ++i)
            if (kind.parameters[i].name == name) return i;
        throw std::invalid_argument(std::string(kind.name) + "." + name);
    }

    Value size_;
};

} // namespace embedded
