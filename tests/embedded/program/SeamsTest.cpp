#include "embedded/program/Seams.h"
#include "embedded/program/Cost.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <gtest/gtest.h>

namespace embedded {
namespace {

// Rings around the middle, which do not tile.
ProgramNode rings() {
    ProgramNode node = makeNode("wave");
    parameter(node, "layout").constant.integers[0] = 1;
    return node;
}

ProgramNode imageNode(std::int32_t input) {
    ProgramNode node = makeNode("imageInput");
    parameter(node, "image") = boundTo(input);
    return node;
}

// Node and parameter of the cause, then the images.
std::string toText(const OutputSeams& seams) {
    std::string text =
        seams.cause ? std::to_string(seams.cause->node) + " " + seams.cause->parameter : "tiles";
    for (const std::int32_t image : seams.images) text += " if " + std::to_string(image);
    return text;
}

std::string seamsOf(Program program, std::size_t outputNodes) {
    program.outputs.clear();
    for (std::size_t i = 0; i < outputNodes; ++i)
        program.outputs.push_back({static_cast<std::uint32_t>(i), static_cast<std::int32_t>(i), 0, 1});
    std::string text;
    for (const OutputSeams& seams : findSeams(program)) text += (text.empty() ? "" : ", ") + toText(seams);
    return text;
}

TEST(Seams, CausesFlowToTheOutputs) {
    Program program;
    program.inputs = {makeInput(1, ValueType::Image), makeInput(2, ValueType::Image)};
    program.nodes = {makeNode("wave"),
                     rings(),
                     imageNode(1),
                     makeNode("blur", {1}),
                     imageNode(0),
                     makeNode("blend", {2, 4}),
                     makeNode("blend", {0, 3}),
                     makeNode("blend", {5, 6}),
                     rings(),
                     makeNode("blend", {8, 3}),
                     makeNode("imageInput", {1})}; // shows what another program makes
    EXPECT_EQ(seamsOf(program, program.nodes.size()),
              "tiles, 1 layout, tiles if 1, 1 layout, tiles if 0, tiles if 0 if 1, 1 layout, "
              "1 layout if 0 if 1, 8 layout, 1 layout, 1 layout");
}

TEST(Seams, OnlyConstantsAreKnown) {
    const auto layout = [](auto change) {
        Program program;
        program.inputs = {makeInput(1, ValueType::Integer)};
        program.nodes = {makeNode("wave")};
        change(parameter(program.nodes[0], "layout"));
        return seamsOf(program, 1);
    };
    EXPECT_EQ(layout([](Binding& binding) { binding.input = 0; }), "0 layout");
    EXPECT_EQ(layout([](Binding& binding) { binding.constant.integers[0] = -7; }), "tiles"); // runs as 0
    EXPECT_EQ(layout([](Binding& binding) { binding.constant.integers[0] = 99; }), "0 layout");

    const auto turned = [](double turns, bool exactly) {
        Program program;
        program.nodes = {makeNode("wave"), makeNode("transform", {0})};
        parameter(program.nodes[1], "rotation").constant = makeValue(ValueType::Float, {turns});
        parameter(program.nodes[1], "seamless").constant.integers[0] = exactly ? 0 : 1;
        return seamsOf(program, 2);
    };
    EXPECT_EQ(turned(0.1, false), "tiles, tiles");
    EXPECT_EQ(turned(0.5, true), "tiles, tiles");
    EXPECT_EQ(turned(0.1, true), "tiles, 1 seamless");
}

TEST(Cost, CountsWhatTheOutputsNeed) {
    Program program;
    program.inputs = {makeInput(1, ValueType::Integer2, {9, 9}, SystemInput::Resolution)};
    program.nodes = {makeNode("uniform"), makeNode("wave"), makeNode("blend", {0, 1}),
                     makeNode("levels", {1})};
    parameter(program.nodes[0], "colour").constant.integers[0] = 1;
    for (ProgramNode& node : program.nodes) node.resolution = boundTo(0);
    program.nodes[1].resolution = constantly(makeValue(ValueType::Integer2, {3, 99})); // runs as 3, 14
    program.outputs = {{1, 2, 0, 1}, {2, 3, 0, 1}};
    constexpr double resizing = 20;
    const auto perPixel = [](const char* kind) { return findNodeKind(kind)->costPerPixel; };

    const ProgramCost one = costOf(program, {1}, 4, 5);
    EXPECT_EQ(one.nodes, 2u);
    EXPECT_EQ(one.operations, perPixel("wave") * 8 * 16384 + (perPixel("levels") + resizing) * 16 * 32);
    EXPECT_EQ(one.bytes, 4u * (8 * 16384 + 16 * 32));
    EXPECT_EQ(one.pixels, 8u * 16384);
    const ProgramCost both = costOf(program, {0, 1}, 4, 5);
    EXPECT_EQ(both.nodes, 4u);
    EXPECT_EQ(both.bytes, one.bytes + 2 * 16 * 16 * 32); // colour
    EXPECT_EQ(both.operations - one.operations,
              (perPixel("uniform") + perPixel("blend") + resizing) * 16 * 32);
    EXPECT_EQ(costOf(program, {}, 4, 5).nodes, 0u);
}

} // namespace
} // namespace embedded
