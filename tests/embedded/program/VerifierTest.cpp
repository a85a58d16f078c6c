#include "embedded/program/Verifier.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <gtest/gtest.h>

#include <cmath>

namespace embedded {
namespace {

struct BrokenRule {
    const char* place;
    const char* reason; // a part of it
    void (*breakIt)(Program&);
};

constexpr float notANumber = NAN;

// Node 0 is a uniform, 1 an imageInput, 2 a blend of both; see sampleProgram.
const BrokenRule brokenRules[] = {
    {"program", "too many inputs", [](Program& p) { p.inputs.resize(maxProgramInputs + 1); }},
    {"program", "too many nodes", [](Program& p) { p.nodes.resize(maxProgramNodes + 1); }},
    {"program", "too many outputs", [](Program& p) { p.outputs.resize(maxProgramOutputs + 1); }},
    {"input 2", "no type", [](Program& p) { p.inputs[2].type = static_cast<ValueType>(7); }},
    {"input 2", "another type",
     [](Program& p) { p.inputs[2].defaultValue = makeValue(ValueType::Integer, {1}); }},
    {"input 2", "not finite", [](Program& p) { p.inputs[2].defaultValue.floats[0] = INFINITY; }},
    {"input 2", "no role", [](Program& p) { p.inputs[2].role = static_cast<SystemInput>(3); }},
    {"input 1", "two integers", [](Program& p) { p.inputs[1].role = SystemInput::Resolution; }},
    {"input 0", "an integer", [](Program& p) { p.inputs[0].role = SystemInput::Seed; }},
    {"node 0", "no kind", [](Program& p) { p.nodes[0].kind = 9999; }},
    {"node 2 (blend)", "2 sources instead of 3", [](Program& p) { p.nodes[2].sources.pop_back(); }},
    {"node 2 (blend)", "has to be connected", [](Program& p) { p.nodes[2].sources[1] = -1; }},
    {"node 2 (blend)", "no earlier node", [](Program& p) { p.nodes[2].sources[2] = 2; }},
    {"node 2 (blend)", "no earlier node", [](Program& p) { p.nodes[2].sources[2] = -2; }},
    {"node 2 (blend)", "1 parameters instead of 2", [](Program& p) { p.nodes[2].parameters.pop_back(); }},
    {"node 2 (blend), parameter mode", "constant has another type",
     [](Program& p) { parameter(p.nodes[2], "mode").constant = makeValue(ValueType::Float, {1}); }},
    {"node 1 (imageInput), parameter fallback", "constant is not finite",
     [](Program& p) { parameter(p.nodes[1], "fallback").constant.floats[3] = notANumber; }},
    {"node 2 (blend), parameter opacity", "no input",
     [](Program& p) { parameter(p.nodes[2], "opacity").input = 5; }},
    {"node 2 (blend), parameter opacity", "cannot drive",
     [](Program& p) { parameter(p.nodes[2], "opacity").input = 4; }},
    {"node 2 (blend), parameter opacity", "scale or offset is not finite",
     [](Program& p) { parameter(p.nodes[2], "opacity").scale = notANumber; }},
    {"node 2 (blend), parameter mode", "for floats only",
     [](Program& p) { parameter(p.nodes[2], "mode").offset = 1; }},
    {"node 0 (uniform), resolution", "another type", [](Program& p) { p.nodes[0].resolution = {}; }},
    {"node 0 (uniform), resolution", "cannot drive", [](Program& p) { p.nodes[0].resolution.input = 2; }},
    {"node 0 (uniform), seed", "cannot drive", [](Program& p) { p.nodes[0].seed.input = 0; }},
    {"output 1", "no node", [](Program& p) { p.outputs[1].node = 3; }},
    {"output 1", "no node", [](Program& p) { p.outputs[1].node = -1; }},
    {"output 0", "no format", [](Program& p) { p.outputs[0].format = 1; }},
    {"output 0", "mipmap", [](Program& p) { p.outputs[0].mipmaps = maxMipmaps + 1; }},
};

TEST(Verifier, RulesAreReportedAlone) {
    EXPECT_TRUE(verify(sampleProgram()).empty());
    Program hopeless;
    hopeless.nodes.resize(maxProgramNodes);
    EXPECT_EQ(verify(hopeless).size(), 100u) << "the list of problems ends";
    for (const BrokenRule& rule : brokenRules) {
        Program program = sampleProgram();
        rule.breakIt(program);
        const auto problems = verify(program);
        ASSERT_EQ(problems.size(), 1u) << rule.place << ": " << rule.reason;
        EXPECT_EQ(problems[0].place, rule.place);
        EXPECT_NE(problems[0].reason.find(rule.reason), std::string::npos) << problems[0].reason;
    }
}

// A letter for each parameter type in the order of the columns: what the row's input may drive.
TEST(Verifier, InputsDriveParameters) {
    const char* const rows[] = {"yyyy.....", ".y.......", "..yy.....", "...y.....", "yyyyyyyy.",
                                ".y...y...", "..yy..yy.", "...y...y.", "........y"};
    const std::uint32_t types[] = {0, 1, 2, 3, 4, 8, 9, 10, 5};
    for (std::size_t input = 0; input < 9; ++input) {
        std::string row;
        for (const std::uint32_t type : types)
            row += canDrive(static_cast<ValueType>(types[input]), static_cast<ValueType>(type)) ? 'y' : '.';
        EXPECT_EQ(row, rows[input]) << "row " << input;
    }
}

} // namespace
} // namespace embedded
