#include "embedded/program/Seams.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <gtest/gtest.h>

namespace embedded {
namespace {

// Node and parameter of the cause, then the images.
std::string toText(const OutputSeams& seams) {
    std::string text =
        seams.cause ? std::to_string(seams.cause->node) + " " + seams.cause->parameter : "tiles";
    for (const std::int32_t image : seams.images) text += " if " + std::to_string(image);
    return text;
}

// Each node is an output; only constants are known, and count as what they are within their range.
TEST(Seams, CausesFlowToTheOutputs) {
    const ProgramNode rings = makeNode("wave", {}, {{"layout", {1}}});
    const std::pair<ProgramNode, const char*> nodes[] = {
        {makeNode("wave"), "tiles"},
        {rings, "1 layout"},
        {makeBound("imageInput", {}, "image", boundTo(1)), "tiles if 1"},
        {makeNode("blur", {1}), "1 layout"},
        {makeBound("imageInput", {}, "image", boundTo(0)), "tiles if 0"},
        {makeNode("blend", {2, 4}), "tiles if 0 if 1"},
        {makeNode("blend", {0, 3}), "1 layout"},
        {makeNode("blend", {5, 6}), "1 layout if 0 if 1"},
        {rings, "8 layout"},
        {makeNode("blend", {8, 3}), "1 layout"},
        {makeNode("imageInput", {1}), "1 layout"}, // shows what another program makes
        {makeBound("wave", {}, "layout", boundTo(2)), "11 layout"},
        {makeNode("wave", {}, {{"layout", {-7}}}), "tiles"},
        {makeNode("wave", {}, {{"layout", {99}}}), "13 layout"},
        {makeNode("transform", {0}, {{"rotation", {0.1}}, {"seamless", {1}}}), "tiles"},
        {makeNode("transform", {0}, {{"rotation", {0.5}}, {"seamless", {0}}}), "tiles"},
        {makeNode("transform", {0}, {{"rotation", {0.1}}, {"seamless", {0}}}), "16 seamless"},
    };
    Program program;
    program.inputs = {makeInput(1, ValueType::Image), makeInput(2, ValueType::Image),
                      makeInput(3, ValueType::Integer)};
    for (const auto& [node, seams] : nodes) {
        program.outputs.push_back({0, static_cast<std::int32_t>(program.nodes.size()), 0, 1});
        program.nodes.push_back(node);
    }
    const std::vector<OutputSeams> found = findSeams(program);
    ASSERT_EQ(found.size(), std::size(nodes));
    for (std::size_t i = 0; i < found.size(); ++i) EXPECT_EQ(toText(found[i]), nodes[i].second) << i;
}

} // namespace
} // namespace embedded
