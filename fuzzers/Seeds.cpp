// Writes first inputs for the fuzzers: what sources are compiled to, and a small program for each node
// kind.
//
//     fuzz_seeds FOLDER SOURCE...
//
// FOLDER gets a folder for each target that it has inputs for.
#include "embedded/compiler/Compiler.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

using namespace embedded;
namespace fs = std::filesystem;

constexpr std::size_t largestInput = 8192; // larger ones are slow to fuzz

template <class Content>
void write(const fs::path& folder, const std::string& name, const Content& content) {
    if (content.size() > largestInput) return;
    fs::create_directories(folder);
    std::ofstream file(folder / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
    if (!file.flush()) throw std::runtime_error((folder / name).string() + " cannot be written");
}

// Each text from one mark up to the end of the other, or up to the end of the tag if there is no element.
std::vector<std::string> pieces(const std::string& text, const std::string& begin, const std::string& end) {
    std::vector<std::string> found;
    for (std::size_t at = 0; (at = text.find(begin, at)) != std::string::npos; ++at) {
        const std::size_t tagEnd = text.find('>', at);
        const bool isEmpty = tagEnd != std::string::npos && text[tagEnd - 1] == '/';
        const std::size_t last = isEmpty ? tagEnd + 1 : text.find(end, at) + end.size();
        found.push_back(text.substr(at, last - at));
    }
    return found;
}

void writeSample(const fs::path& folder, const fs::path& source) {
    std::ifstream file(source, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const CompileResult compiled = compilePackage(text);
    const auto package = decodePackage(compiled.package.data(), compiled.package.size());
    if (!package) throw std::runtime_error(source.string() + " does not compile");
    const std::string name = source.stem().string();
    write(folder / "source", name, text);
    write(folder / "package", name, compiled.package);
    write(folder / "assembly", name, package->assembly);
    write(folder / "description", name, package->description);
    write(folder / "host_description", name, package->description);
    for (const std::string& presets : pieces(package->description, "<sbspresets", "</sbspresets>"))
        write(folder / "presets", name, presets);
    int number = 0;
    for (const std::string& gui : pieces(package->description, "<inputgui", "</inputgui>"))
        write(folder / "gui", name + std::to_string(++number), "0" + std::string(4, '\0') + gui);
}

// A node of the kind over a uniform, an image and a float input.
Program smallProgram(const NodeKind& kind) {
    Program program;
    program.uid = kind.code;
    program.inputs = {makeInput(1, ValueType::Integer2, {3, 2}, SystemInput::Resolution),
                      makeInput(2, ValueType::Integer, {1}, SystemInput::Seed),
                      makeInput(3, ValueType::Float, {0.25}), makeInput(4, ValueType::Image)};
    program.nodes = {makeNode("fbm"), makeNode("imageInput")};
    std::vector<std::int32_t> sources;
    for (std::size_t i = 0; i < kind.ports.size(); ++i) sources.push_back(static_cast<std::int32_t>(i % 2));
    program.nodes.push_back(makeNode(kind.name, sources));
    for (ProgramNode& node : program.nodes) {
        node.resolution = boundTo(0);
        node.seed = boundTo(1);
        for (Binding& binding : node.parameters)
            if (binding.constant.type == ValueType::Image) binding = boundTo(3);
    }
    program.outputs = {{11, 2, 32, 2}, {12, 2, 65, 1}};
    return program;
}

void writeNodeKinds(const fs::path& folder) {
    for (const NodeKind& kind : nodeKinds()) {
        const std::vector<unsigned char> assembly = encodeAssembly(smallProgram(kind));
        write(folder / "assembly", kind.name, assembly);
        write(folder / "package", kind.name, encodePackage({"", assembly}));
    }
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: fuzz_seeds FOLDER SOURCE...\n");
        return 2;
    }
    try {
        writeNodeKinds(arguments[1]);
        for (int i = 2; i < count; ++i) writeSample(arguments[1], arguments[i]);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "fuzz_seeds: %s\n", problem.what());
        return 1;
    }
    return 0;
}
