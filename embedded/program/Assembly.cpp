#include "embedded/program/Assembly.h"

#include "embedded/program/FlatBufferBytes.h"
#include "embedded/program/Verifier.h"
#include "embedded/program/assembly_generated.h"

#include <algorithm>

namespace embedded {

namespace {

constexpr std::uint32_t assemblyVersion = 1;

using flatbuffers::FlatBufferBuilder;
using flatbuffers::Offset;

Offset<format::Value> write(FlatBufferBuilder& builder, const Value& value) {
    const auto count = static_cast<std::size_t>(componentCount(value.type));
    const auto type = static_cast<std::uint32_t>(value.type);
    if (count == 0) return format::CreateValue(builder, type);
    if (isInteger(value.type))
        return format::CreateValue(builder, type, 0, builder.CreateVector(value.integers.data(), count));
    return format::CreateValue(builder, type, builder.CreateVector(value.floats.data(), count));
}

Offset<format::Binding> write(FlatBufferBuilder& builder, const Binding& binding) {
    const bool isConstant = binding.input == Binding::constantOnly;
    const Offset<format::Value> constant = isConstant ? write(builder, binding.constant) : 0;
    return format::CreateBinding(builder, binding.input, constant, binding.scale, binding.offset);
}

Offset<format::Input> write(FlatBufferBuilder& builder, const ProgramInput& input) {
    const auto value = write(builder, input.defaultValue);
    return format::CreateInput(builder, input.uid, static_cast<std::uint8_t>(input.role), value);
}

Offset<format::Node> write(FlatBufferBuilder& builder, const ProgramNode& node);
Offset<format::Output> write(FlatBufferBuilder& builder, const ProgramOutput& output);

template <typename Record, typename Item>
Offset<flatbuffers::Vector<Offset<Record>>> writeAll(FlatBufferBuilder& builder,
                                                     const std::vector<Item>& items) {
    std::vector<Offset<Record>> records;
    records.reserve(items.size());
    for (const Item& item : items) records.push_back(write(builder, item));
    return builder.CreateVector(records);
}

Offset<format::Node> write(FlatBufferBuilder& builder, const ProgramNode& node) {
    const auto sources = builder.CreateVector(node.sources);
    const auto parameters = writeAll<format::Binding>(builder, node.parameters);
    const auto resolution = write(builder, node.resolution);
    const auto seed = write(builder, node.seed);
    return format::CreateNode(builder, node.kind, sources, parameters, resolution, seed);
}

Offset<format::Output> write(FlatBufferBuilder& builder, const ProgramOutput& output) {
    return format::CreateOutput(builder, output.uid, output.node, output.format, output.mipmaps);
}

// Vectors of numbers may be shared between tables, so their lengths are checked before anything is copied.
template <typename Number>
bool read(const flatbuffers::Vector<Number>* components, std::size_t count, std::array<Number, 4>& into) {
    if (!components || components->size() != count) return false;
    std::copy(components->begin(), components->end(), into.begin());
    return true;
}

bool read(const format::Value& from, Value& value) {
    if (!isValueType(from.type())) return false;
    value.type = static_cast<ValueType>(from.type());
    const auto count = static_cast<std::size_t>(componentCount(value.type));
    if (count == 0) return true;
    return isInteger(value.type) ? read(from.integers(), count, value.integers)
                                 : read(from.floats(), count, value.floats);
}

bool read(const format::Binding& from, Binding& binding) {
    binding.input = from.input();
    binding.scale = from.scale();
    binding.offset = from.offset();
    if (binding.input != Binding::constantOnly) return true;
    return from.constant() && read(*from.constant(), binding.constant);
}

bool read(const format::Input& from, ProgramInput& input) {
    input.uid = from.uid();
    input.role = static_cast<SystemInput>(from.role());
    if (!read(*from.default_value(), input.defaultValue)) return false;
    input.type = input.defaultValue.type;
    return true;
}

bool read(const format::Node& from, ProgramNode& node);
bool read(const format::Output& from, ProgramOutput& output);

template <typename Record, typename Item>
bool readAll(const flatbuffers::Vector<Offset<Record>>& records, std::size_t limit,
             std::vector<Item>& items) {
    if (records.size() > limit) return false;
    items.resize(records.size());
    for (flatbuffers::uoffset_t i = 0; i < records.size(); ++i)
        if (!read(*records.Get(i), items[i])) return false;
    return true;
}

bool read(const format::Node& from, ProgramNode& node) {
    node.kind = from.kind();
    if (from.sources()->size() > maxNodePorts) return false;
    node.sources.assign(from.sources()->begin(), from.sources()->end());
    return readAll(*from.parameters(), maxNodeParameters, node.parameters) &&
           read(*from.resolution(), node.resolution) && read(*from.seed(), node.seed);
}

bool read(const format::Output& from, ProgramOutput& output) {
    output.uid = from.uid();
    output.node = from.node();
    output.format = from.format();
    output.mipmaps = from.mipmaps();
    return true;
}

} // namespace

std::vector<unsigned char> encodeAssembly(const Program& program) {
    FlatBufferBuilder builder;
    const auto inputs = writeAll<format::Input>(builder, program.inputs);
    const auto nodes = writeAll<format::Node>(builder, program.nodes);
    const auto outputs = writeAll<format::Output>(builder, program.outputs);
    builder.Finish(format::CreateAssembly(builder, assemblyVersion, program.uid, inputs, nodes, outputs),
                   format::AssemblyIdentifier());
    return finishedBytes(builder);
}

std::optional<Program> decodeAssembly(const void* data, std::size_t size) {
    const std::vector<unsigned char> file = alignedCopy(data, size);
    const auto* root = verifiedRoot<format::Assembly>(file, format::AssemblyIdentifier());
    if (!root || root->version() != assemblyVersion) return std::nullopt;

    Program program;
    program.uid = root->uid();
    const bool isRead = readAll(*root->inputs(), maxProgramInputs, program.inputs) &&
                        readAll(*root->nodes(), maxProgramNodes, program.nodes) &&
                        readAll(*root->outputs(), maxProgramOutputs, program.outputs);
    if (!isRead || !verify(program).empty()) return std::nullopt;
    return program;
}

} // namespace embedded
