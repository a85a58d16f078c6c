// Programs as text, one record a line, so that tests compare them as a whole.
#pragma once

#include "embedded/nodes/NodeKind.h"
#include "embedded/program/Program.h"
#include "tests/ClassicText.h"

#include <string>

namespace embedded {

inline std::ostream& operator<<(std::ostream& text, const Value& value) {
    text << static_cast<std::uint32_t>(value.type) << ":";
    for (std::size_t i = 0; i < static_cast<std::size_t>(componentCount(value.type)); ++i) {
        text << (i == 0 ? "" : ",");
        isInteger(value.type) ? text << value.integers[i] : text << value.floats[i];
    }
    return text;
}

inline std::ostream& operator<<(std::ostream& text, const Binding& binding) {
    if (binding.input == Binding::constantOnly) return text << binding.constant;
    text << "{" << binding.input << "}";
    if (binding.scale != 1.0f || binding.offset != 0.0f)
        text << "*" << binding.scale << "+" << binding.offset;
    return text;
}

inline std::string toText(const Program& program) {
    ClassicText text;
    for (const ProgramInput& input : program.inputs)
        text << "input " << input.uid << " role " << static_cast<int>(input.role) << " " << input.defaultValue
             << "\n";
    for (const ProgramNode& node : program.nodes) {
        text << "node " << findNodeKind(node.kind)->name << " [";
        for (const std::int32_t source : node.sources) text << " " << source;
        text << " ]";
        for (const Binding& binding : node.parameters) text << " " << binding;
        text << " resolution " << node.resolution << " seed " << node.seed << "\n";
    }
    for (const ProgramOutput& output : program.outputs)
        text << "output " << output.uid << " node " << output.node << " format " << output.format
             << " mipmaps " << output.mipmaps << "\n";
    return text.str();
}

} // namespace embedded
