// Graph instances by themselves: values, what they make dirty, and the key they form.
#include "tests/framework/render/RenderFixture.h"

#include <boost/make_shared.hpp>

#include <cstring>

namespace SubstanceAir {

void addInput(GraphDesc& desc, const std::string& identifier, int value, bool isSystem) {
    auto input = std::make_unique<InputDescNumerical<int>>();
    input->identifier = identifier;
    input->type = Integer;
    input->defaultValue = value;
    input->isSystem = isSystem;
    desc.inputs.push_back(std::move(input));
}

TEST_F(RendererTest, RealChangesMarkTheAlteredOutputs) {
    const auto takeDirty = [this] {
        const bool output = graph.output().dirty.exchange(false),
                   height = graph.height().dirty.exchange(false);
        return std::string(output ? "Output " : "") + (height ? "height " : "");
    };
    takeDirty();
    graph.amount().setValue(0.25f);
    EXPECT_EQ(takeDirty(), "Output ");
    graph.amount().reset();
    EXPECT_EQ(takeDirty(), "Output ");
    graph.amount().reset();
    EXPECT_EQ(takeDirty(), "");

    graph.picture().reset();
    EXPECT_EQ(takeDirty(), "");
    const auto picture = boost::make_shared<InputImage>(SubstanceTextureInput{});
    graph.picture().setImage(picture);
    EXPECT_EQ(takeDirty(), "Output height ");
    graph.picture().setImage(picture);
    EXPECT_EQ(takeDirty(), "");
}

TEST(GraphInstance, HasAKeyOfSystemInputsAndNames) {
    GraphDesc desc;
    addInput(desc, "a", 0x01020304, true);
    addInput(desc, "", 5, false);
    addInput(desc, "a", 8, true);
    const GraphInstance graph(desc);
    const int expected[] = {0x01020304, 8};
    const auto bytes = graph.keyBytes();
    ASSERT_EQ(bytes.size(), sizeof expected);
    EXPECT_EQ(std::memcmp(bytes.data(), expected, sizeof expected), 0);
    EXPECT_EQ(graph.findInput("a"), graph.inputs[0].get()) << "the first of a name";
    EXPECT_EQ(graph.findInput(""), nullptr);
}

TEST(GraphInstance, ForeignUidsMarkTheOutputAfterThem) {
    GraphDesc desc;
    addInput(desc, "a", 7, false);
    desc.inputs[0]->alteredOutputUids = {15, 31};
    desc.outputs.resize(3);
    for (const unsigned int i : {0u, 1u, 2u}) desc.outputs[i].uid = 10 * (i + 1);
    const GraphInstance graph(desc);
    for (const auto& output : graph.outputs) output->dirty = false;
    dynamic_cast<InputInstanceNumerical<int>&>(*graph.inputs[0]).setValue(8);
    for (const auto& output : graph.outputs) EXPECT_EQ(output->dirty, output->desc.uid == 20);
}

TEST_F(RendererTest, ValuesAsText) {
    for (const char* const refused : {"1,2", " 1", ""})
        EXPECT_FALSE(graph.amount().setValueFromText(refused)) << refused;
    EXPECT_TRUE(graph.amount().setValueFromText("-1234567.5"));
    EXPECT_EQ(graph.amount().valueAsText(), "-1.23457e+06");
    EXPECT_EQ(graph.amount().value(), -1234567.5f);
}

} // namespace SubstanceAir
