#include "embedded/program/Verifier.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <gtest/gtest.h>

#include <cmath>

namespace embedded {
namespace {

// A part of the reason, and how sampleProgram comes to break the rule. Its node 0 is a uniform, 1 an
// imageInput, 2 a blend of both.
const std::pair<const char*, void (*)(Program&)> brokenRules[] = {
    {"too many nodes", [](Program& p) { p.nodes.resize(maxProgramNodes + 1); }},
    {"not finite", [](Program& p) { p.inputs[2].defaultValue.floats[0] = INFINITY; }},
    {"no kind", [](Program& p) { p.nodes[0].kind = 9999; }},
    {"2 sources instead of 3", [](Program& p) { p.nodes[2].sources.pop_back(); }},
    {"has to be connected", [](Program& p) { p.nodes[2].sources[1] = -1; }},
    {"no earlier node", [](Program& p) { p.nodes[2].sources[2] = 2; }},
    {"no earlier node", [](Program& p) { p.nodes[2].sources[2] = -2; }},
    {"constant is not finite", [](Program& p) { p.nodes[1].parameters[2].constant.floats[3] = NAN; }},
    {"no input", [](Program& p) { parameter(p.nodes[2], "opacity").input = 5; }},
    {"scale or offset is not finite", [](Program& p) { parameter(p.nodes[2], "opacity").scale = NAN; }},
    {"for floats only", [](Program& p) { parameter(p.nodes[2], "mode").offset = 1; }},
    {"cannot drive", [](Program& p) { p.nodes[0].seed.input = 0; }},
    {"no node", [](Program& p) { p.outputs[1].node = 3; }},
    {"no format", [](Program& p) { p.outputs[0].format = 1; }},
    {"mipmap", [](Program& p) { p.outputs[0].mipmaps = maxMipmaps + 1; }},
};

TEST(Verifier, RulesAreReportedAlone) {
    EXPECT_TRUE(verify(sampleProgram()).empty());
    for (const auto& [reason, breakIt] : brokenRules) {
        Program program = sampleProgram();
        breakIt(program);
        const auto problems = verify(program);
        ASSERT_EQ(problems.size(), 1u) << reason;
        EXPECT_NE(problems[0].reason.find(reason), std::string::npos) << problems[0].reason;
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
