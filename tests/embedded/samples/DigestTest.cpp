// The samples give the same bytes everywhere: a table of digests holds for every compiler, instruction set,
// number of threads and length of segments. With KVSUBSTANCE_WRITE_DIGESTS set the table is written anew, for
// engines that are meant to give other bytes; engineRevision grows then.
#include "embedded/compiler/Compiler.h"
#include "embedded/engine/WorkerPool.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"
#include "embedded/rows/InstructionSet.h"
#include "tests/embedded/engine/Rendering.h"

#include <gtest/gtest.h>

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <sstream>

using namespace embedded;

namespace {

std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::map<std::string, Program> samples() {
    std::map<std::string, Program> programs;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(KVSUBSTANCE_SAMPLE_SOURCES)) {
        if (entry.path().extension() != ".xml") continue;
        const CompileResult compiled = compilePackage(readFile(entry.path()));
        const auto package = decodePackage(compiled.package.data(), compiled.package.size());
        if (!package) throw std::runtime_error(entry.path().string() + " does not compile");
        const auto& assembly = package->assembly;
        programs[entry.path().stem().string()] = *decodeAssembly(assembly.data(), assembly.size());
    }
    return programs;
}

// One line for each output: sample, output, digest.
std::string digestsOf(const std::string& name, const Program& program, unsigned threads, int segmentLength) {
    InputValues inputs = defaultValues(program);
    for (std::size_t i = 0; i < program.inputs.size(); ++i)
        if (program.inputs[i].role == SystemInput::Resolution) inputs.values[i].integers = {7, 7, 0, 0};
    WorkerPool pool(threads);
    Workshop workshop = plainWorkshop();
    workshop.runner = [&](int rows, int, const RowFunction& function) { pool.run(rows, 1 << 14, function); };
    workshop.segmentLength = segmentLength;
    std::vector<std::size_t> outputs(program.outputs.size());
    std::iota(outputs.begin(), outputs.end(), std::size_t{0});
    RenderedTextures rendered;
    evaluate(program, outputs, inputs, workshop, rendered);
    std::string lines;
    for (const auto& [output, texture] : rendered.textures) {
        const XXH128_hash_t hash = XXH3_128bits(texture.bytes.data(), texture.bytes.size());
        char digest[33];
        std::snprintf(digest, sizeof digest, "%016llx%016llx", static_cast<unsigned long long>(hash.high64),
                      static_cast<unsigned long long>(hash.low64));
        lines += name + ' ' + std::to_string(output) + ' ' + digest + '\n';
    }
    return lines;
}

TEST(SampleDigests, areTheSameForEveryInstructionSetThreadsAndSegments) {
    const struct {
        unsigned threads;
        int segmentLength;
    } ways[] = {{1, defaultSegmentLength}, {2, 50}, {7, 64}};
    for (int set = 0; set <= static_cast<int>(bestInstructionSet()); ++set) {
        forceInstructionSet(static_cast<InstructionSet>(set));
        for (const auto& [threads, segmentLength] : ways) {
            std::string table;
            for (const auto& [name, program] : samples())
                table += digestsOf(name, program, threads, segmentLength);
            if (std::getenv("KVSUBSTANCE_WRITE_DIGESTS"))
                std::ofstream(KVSUBSTANCE_DIGESTS, std::ios::binary) << table;
            EXPECT_EQ(table, readFile(KVSUBSTANCE_DIGESTS))
                << nameOf(instructionSet()) << ", " << threads << " threads";
        }
    }
}

} // namespace
