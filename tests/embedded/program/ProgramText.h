// Programs as text, one record a line, so that tests compare them as a whole.
#pragma once

#include "embedded/nodes/NodeKind.h"
#include "embedded/program/Program.h"
#include "tests/ClassicText.h"

#include <string>

namespace embedded {

inline std::string toText(const Value& value) {
    ClassicText text;
    text << static_cast<std::uint32_t>(value.type) << ":";
    for (int i = 0; i < componentCount(value.type); ++i) {
        const auto index = static_cast<std::size_t>(i);
        if (i != 0) text << ",";
        isInteger(value.type) ? text << value.integers[index] : text << value.floats[index];
    }
    return text.str();
}

inline std::string toText(const Binding& binding) {
    ClassicText text;
    if (binding.input == Binding::constantOnly)
        text << toText(binding.constant);
    else
        text << "{" << binding.input << "}";
    if (binding.scale != 1.0f || binding.offset != 0.0f)
        text << "*" << binding.scale << "+" << binding.offset;
    return text.str();
}

inline std::string toText(const ProgramNode& node) {
    const NodeKind* kind = findNodeKind(node.kind);
    std::string text = kind ? kind->name : "?";
    text += " [";
    for (const std::int32_t source : node.sources) text += " " + std::to_string(source);
    text += " ]";
    for (const Binding& binding : node.parameters) text += " " + toText(binding);
    return text + " resolution " + toText(node.resolution) + " seed " + toText(node.seed);
}

inline std::string toText(const Program& program) {
    ClassicText text;
    for (const ProgramInput& input : program.inputs)
        text << "input " << input.uid << " role " << static_cast<int>(input.role) << " "
             << toText(input.defaultValue) << "\n";
    for (const ProgramNode& node : program.nodes) text << "node " << toText(node) << "\n";
    for (const ProgramOutput& output : program.outputs)
        text << "output " << output.uid << " node " << output.node << " format " << output.format
             << " mipmaps " << output.mipmaps << "\n";
    return text.str();
}

} // namespace embedded
