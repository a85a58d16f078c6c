// Writes programs for the tests of nodes and engine: a line for each node, parameters by name.
#pragma once

#include "tests/embedded/program/SamplePrograms.h"

#include <map>
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
        ProgramNode added = makeNode(kindName, std::move(sources));
        added.sources.resize(findNodeKind(kindName)->ports.size(), ProgramNode::unconnected);
        for (const auto& [name, numbers] : parameters) {
            Value& constant = parameter(added, name).constant;
            constant = makeValue(constant.type, numbers);
        }
        added.resolution.constant = size_;
        program.nodes.push_back(std::move(added));
        return static_cast<std::int32_t>(program.nodes.size()) - 1;
    }

    void bind(std::int32_t node, const std::string& name, std::int32_t input) {
        parameter(program.nodes[static_cast<std::size_t>(node)], name).input = input;
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
    Value size_;
};

} // namespace embedded
