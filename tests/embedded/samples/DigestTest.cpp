// The samples give the same bytes everywhere: a table of digests holds for every compiler, instruction set,
// number of threads and length of segments. With KVSUBSTANCE_WRITE_DIGESTS set the table is written anew, for
// engines that are meant to give other bytes; engineRevision grows then.
#include "tools/Digest.h"
#include "embedded/engine/WorkerPool.h"
#include "embedded/program/Assembly.h"
#include "embedded/rows/InstructionSet.h"
#include "tests/embedded/engine/Rendering.h"
#include "tests/embedded/samples/Samples.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <numeric>

using namespace embedded;

namespace {

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
        const std::string bytes(texture.bytes.begin(), texture.bytes.end());
        lines += name + ' ' + std::to_string(output) + ' ' + tool::digestOf(bytes) + '\n';
    }
    return lines;
}

TEST(SampleDigests, areTheSameForEveryInstructionSetThreadsAndSegments) {
    const auto samples = sampleAssemblies();
    const std::pair<unsigned, int> ways[] = {{1, defaultSegmentLength}, {2, 50}, {7, 64}};
    for (int set = 0; set <= static_cast<int>(bestInstructionSet()); ++set) {
        forceInstructionSet(static_cast<InstructionSet>(set));
        for (const auto& [threads, segmentLength] : ways) {
            std::string table;
            for (const auto& [name, assembly] : samples)
                table += digestsOf(name, *decodeAssembly(assembly.data(), assembly.size()), threads,
                                   segmentLength);
            if (std::getenv("KVSUBSTANCE_WRITE_DIGESTS"))
                std::ofstream(KVSUBSTANCE_DIGESTS, std::ios::binary) << table;
            EXPECT_EQ(table, readFile(KVSUBSTANCE_DIGESTS))
                << nameOf(instructionSet()) << ", " << threads << " threads";
        }
    }
}

} // namespace
