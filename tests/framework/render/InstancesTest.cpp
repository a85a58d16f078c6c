// Graph instances by themselves: values, what they make dirty, and the key they form.
#include "tests/framework/render/RenderFixture.h"

#include <boost/make_shared.hpp>

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace SubstanceAir {

using Pair = Math::Vector2<float>;

template <class T>
void addInput(GraphDesc& desc, const std::string& identifier, unsigned int type, T value, bool isSystem) {
    auto input = std::make_unique<InputDescNumerical<T>>();
    input->identifier = identifier;
    input->type = type;
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
    for (const float value : {0.25f, 0.5f, std::nanf(""), std::nanf("")}) { // a NaN equals nothing
        graph.amount().setValue(value);
        EXPECT_EQ(takeDirty(), "Output ")
            << value << ": the output after the one uid; none is after the other";
    }
    graph.amount().reset();
    takeDirty();
    graph.amount().reset();
    graph.amount().setValue(0.5f);
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
    addInput(desc, "a", Integer, 0x01020304, true);
    addInput(desc, "", Integer, 5, false);
    addInput(desc, "a", Integer, 8, true);
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
    addInput(desc, "a", Integer, 7, false);
    desc.inputs[0]->alteredOutputUids = {15, 31};
    desc.outputs.resize(3);
    for (const unsigned int i : {0u, 1u, 2u}) desc.outputs[i].uid = 10 * (i + 1);
    const GraphInstance graph(desc);
    for (const auto& output : graph.outputs) output->dirty = false;
    dynamic_cast<InputInstanceNumerical<int>&>(*graph.inputs[0]).setValue(8);
    for (const auto& output : graph.outputs) EXPECT_EQ(output->dirty, output->desc.uid == 20);
}

TEST(InputInstance, ValuesAsText) {
    GraphDesc desc;
    addInput(desc, "a", Float2, Pair{0.1f, -2}, false);
    const GraphInstance graph(desc);
    auto& input = dynamic_cast<InputInstanceNumerical<Pair>&>(*graph.inputs[0]);
    for (const char* const refused : {"1", "1,2,3", "1, 2", ""})
        EXPECT_FALSE(input.setValueFromText(refused)) << refused;
    EXPECT_EQ(input.valueAsText(), "0.1,-2");
    EXPECT_TRUE(input.setValueFromText("1234567,1e-9"));
    EXPECT_EQ(input.valueAsText(), "1.23457e+06,1e-09");
}

#ifdef GTEST_HAS_DEATH_TEST
TEST(GraphInstance, OneThatRendersNothingMakesNoRenderer) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto edit = [] {
        {
            GraphDesc desc;
            addInput(desc, "a", Float2, Pair{}, false);
            const GraphInstance graph(desc);
            dynamic_cast<InputInstanceNumerical<Pair>&>(*graph.inputs[0]).setValue({1, 2});
        }
        std::exit(recording::takeTrace().empty() ? 0 : 1); // the renderer begins with a linker context
    };
    EXPECT_EXIT(edit(), testing::ExitedWithCode(0), "");
}
#endif

} // namespace SubstanceAir
