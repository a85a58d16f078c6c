// Changes assemblies, alone or inside packages, record by record, so that much of what a fuzzer tries is
// still a sound program: nodes are added, connected and bound anew, parameters get other values. Every other
// change is libFuzzer's own.
#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"
#include "embedded/program/Verifier.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <random>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

using namespace embedded;
using Bytes = std::vector<unsigned char>;

class Mutation {
public:
    Mutation(Program& program, unsigned int seed)
        : program_(program)
        , random_(seed) {}

    void run() {
        switch (random_() % 6) {
        case 0:
            return addNode();
        case 1:
            return addInput();
        case 2:
            return changeOutput();
        case 3:
            return connect();
        default:
            return changeBinding();
        }
    }

private:
    std::size_t below(std::size_t count) { return random_() % count; }

    std::int32_t anyOf(std::size_t count) { return static_cast<std::int32_t>(below(count)); }

    Value anyValue(ValueType type) {
        static constexpr float floats[] = {0, 1, -1, 0.5f, 1e-40f, 3e38f, -3e38f, 1000, 1e9f};
        static constexpr std::int32_t integers[] = {0, 1, -1, 2, 3, 7, 100, INT32_MAX, INT32_MIN};
        Value value;
        value.type = type;
        for (std::size_t i = 0; i < static_cast<std::size_t>(componentCount(type)); ++i) {
            if (isInteger(type))
                value.integers[i] = integers[below(std::size(integers))];
            else
                value.floats[i] = floats[below(std::size(floats))];
        }
        return value;
    }

    Value smallSize() {
        Value value = anyValue(ValueType::Integer2);
        value.integers = {anyOf(5), anyOf(5), 0, 0};
        return value;
    }

    void addNode() {
        const NodeKind& kind = nodeKinds()[below(nodeKinds().size())];
        ProgramNode node = makeNode(kind.name);
        if (!program_.nodes.empty())
            for (std::int32_t& source : node.sources)
                if (random_() % 4 != 0) source = anyOf(program_.nodes.size());
        node.resolution = constantly(smallSize());
        program_.nodes.push_back(std::move(node));
        if (!program_.outputs.empty())
            program_.outputs[below(program_.outputs.size())].node =
                static_cast<std::int32_t>(program_.nodes.size()) - 1;
    }

    void addInput() {
        static constexpr ValueType types[] = {ValueType::Float,   ValueType::Float3,   ValueType::Float4,
                                              ValueType::Integer, ValueType::Integer2, ValueType::Image};
        const ValueType type = types[below(std::size(types))];
        program_.inputs.push_back(
            {static_cast<std::uint32_t>(below(9)), type, SystemInput::None, anyValue(type)});
    }

    void changeOutput() {
        static constexpr std::int32_t formats[] = {0, 32, 64, 65, 66, 67, 68};
        if (program_.nodes.empty()) return;
        const ProgramOutput output{static_cast<std::uint32_t>(below(9)), anyOf(program_.nodes.size()),
                                   formats[below(std::size(formats))],
                                   static_cast<std::uint32_t>(below(maxMipmaps + 2))};
        if (program_.outputs.empty() || random_() % 3 == 0)
            program_.outputs.push_back(output);
        else
            program_.outputs[below(program_.outputs.size())] = output;
    }

    void connect() {
        if (program_.nodes.empty()) return;
        const std::size_t index = below(program_.nodes.size());
        auto& sources = program_.nodes[index].sources;
        if (!sources.empty()) sources[below(sources.size())] = anyOf(index + 1) - 1;
    }

    void changeBinding() {
        if (program_.nodes.empty()) return;
        ProgramNode& node = program_.nodes[below(program_.nodes.size())];
        const std::size_t which = below(node.parameters.size() + 2);
        const bool isResolution = which == node.parameters.size();
        Binding& binding = isResolution                          ? node.resolution
                           : which == node.parameters.size() + 1 ? node.seed
                                                                 : node.parameters[which];
        const ValueType type = isResolution ? ValueType::Integer2
                               : which == node.parameters.size() + 1
                                   ? ValueType::Integer
                                   : findNodeKind(node.kind)->parameters[which].type;
        if (!program_.inputs.empty() && random_() % 2 == 0)
            binding = boundTo(anyOf(program_.inputs.size()));
        else
            binding = constantly(isResolution ? smallSize() : anyValue(type));
        if (random_() % 8 == 0) binding.scale = anyValue(ValueType::Float).floats[0];
    }

    Program& program_;
    std::minstd_rand random_;
};

Bytes changed(const std::uint8_t* data, std::size_t size, unsigned int seed) {
    std::optional<Package> package = decodePackage(data, size);
    std::optional<Program> program = package
                                         ? decodeAssembly(package->assembly.data(), package->assembly.size())
                                         : decodeAssembly(data, size);
    if (!program) return {};
    Mutation(*program, seed / 2).run();
    if (!verify(*program).empty()) return {};
    if (!package) return encodeAssembly(*program);
    package->assembly = encodeAssembly(*program);
    return encodePackage(*package);
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
    const Bytes bytes = seed % 2 == 0 ? Bytes() : changed(data, size, seed);
    if (bytes.empty() || bytes.size() > maxSize) return LLVMFuzzerMutate(data, size, maxSize);
    std::copy(bytes.begin(), bytes.end(), data);
    return bytes.size();
}
