// Graph instances by themselves: values, what they make dirty, and the key they form.
#include "framework/description/InputDesc.h"
#include "framework/render/GraphInstance.h"
#include "tests/recording/Recording.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace SubstanceAir {

namespace {

// Outputs 10, 20 and 30, all clean.
struct Fixture {
    template <class T>
    InputDescBase& add(const std::string& identifier, unsigned int type, T value,
                       const std::vector<unsigned int>& altered = {}) {
        auto input = std::make_unique<InputDescNumerical<T>>();
        input->type = type;
        input->identifier = identifier;
        input->defaultValue = value;
        input->alteredOutputUids = altered;
        desc.inputs.push_back(std::move(input));
        return *desc.inputs.back();
    }

    void build() {
        for (const unsigned int uid : {10u, 20u, 30u}) {
            desc.outputs.emplace_back();
            desc.outputs.back().uid = uid;
        }
        graph = std::make_unique<GraphInstance>(desc);
        takeDirty();
    }

    template <class T>
    auto& at(size_t position) {
        return dynamic_cast<InputInstanceNumerical<T>&>(*graph->inputs.at(position));
    }

    // The uids of the outputs that became dirty since the last call.
    std::string takeDirty() {
        std::string text;
        for (const auto& output : graph->outputs)
            if (output->dirty.exchange(false)) text += std::to_string(output->desc.uid) + " ";
        return text;
    }

    GraphDesc desc;
    std::unique_ptr<GraphInstance> graph;
};

} // namespace

TEST(GraphInstance, RealChangesMarkTheAlteredOutputsAndTheirNeighbours) {
    Fixture fixture;
    fixture.add<float>("a", Float, 0.5f, {10, 30});
    fixture.add<int>("b", Integer, 7, {15, 31}); // foreign uids are trusted
    fixture.desc.inputs.push_back(std::make_unique<InputDescImage>());
    fixture.desc.inputs.back()->type = Image;
    fixture.desc.inputs.back()->alteredOutputUids = {20};
    fixture.build();

    auto& amount = fixture.at<float>(0);
    for (const float value : {0.25f, 0.5f, std::nanf(""), std::nanf("")}) { // a NaN equals nothing
        amount.setValue(value);
        EXPECT_EQ(fixture.takeDirty(), "10 30 ") << value;
    }
    amount.reset();
    fixture.takeDirty();
    amount.reset();
    amount.setValue(0.5f);
    EXPECT_EQ(fixture.takeDirty(), "");

    fixture.at<int>(1).setValue(8);
    EXPECT_EQ(fixture.takeDirty(), "20 ") << "the one after 15; nothing comes after 31";

    auto& image = dynamic_cast<InputInstanceImage&>(*fixture.graph->inputs[2]);
    image.reset();
    EXPECT_EQ(fixture.takeDirty(), "");
    const auto picture = boost::make_shared<InputImage>(SubstanceTextureInput{});
    image.setImage(picture);
    EXPECT_EQ(fixture.takeDirty(), "20 ");
    image.setImage(picture);
    EXPECT_EQ(fixture.takeDirty(), "");
}

TEST(GraphInstance, TheKeyIsMadeOfSystemInputsInOrder) {
    Fixture fixture;
    fixture.add<int>("a", Integer, 0x01020304).isSystem = true;
    fixture.add<int>("b", Integer, 5);
    fixture.add<Math::Vector2<int>>("c", Integer2, {8, 9}).isSystem = true;
    fixture.build();
    const int expected[] = {0x01020304, 8, 9};
    const auto bytes = fixture.graph->keyBytes();
    ASSERT_EQ(bytes.size(), sizeof expected);
    EXPECT_EQ(std::memcmp(bytes.data(), expected, sizeof expected), 0);
}

TEST(GraphInstance, FindsTheFirstInputOfAnIdentifier) {
    Fixture fixture;
    for (const char* const identifier : {"a", "", "b", "a"}) fixture.add<int>(identifier, Integer, 0);
    fixture.build();
    EXPECT_EQ(fixture.graph->findInput("a"), fixture.graph->inputs[0].get());
    EXPECT_EQ(fixture.graph->findInput(""), nullptr);
    EXPECT_EQ(fixture.graph->findInput("c"), nullptr);
}

TEST(InputInstance, ValuesAsText) {
    Fixture fixture;
    fixture.add<Math::Vector2<float>>("a", Float2, {0.1f, -2});
    fixture.build();
    auto& input = fixture.at<Math::Vector2<float>>(0);
    for (const char* const refused : {"1", "1,2,3", "1, 2", ""})
        EXPECT_FALSE(input.setValueFromText(refused)) << refused;
    EXPECT_EQ(input.valueAsText(), "0.1,-2");
    EXPECT_TRUE(input.setValueFromText("1234567,1e-9"));
    EXPECT_EQ(input.valueAsText(), "1.23457e+06,1e-09");
}

#ifdef GTEST_HAS_DEATH_TEST
TEST(GraphInstance, OneThatRendersNothingMakesNoRenderer) {
    // A process of its own, so that there is no renderer yet.
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto edit = [] {
        {
            Fixture fixture;
            fixture.add<int>("a", Integer, 5, {10});
            fixture.build();
            fixture.at<int>(0).setValue(6);
            fixture.graph->outputs[1]->grabResult();
        }
        std::exit(recording::takeTrace().empty() ? 0 : 1); // the renderer begins with a linker context
    };
    EXPECT_EXIT(edit(), testing::ExitedWithCode(0), "");
}
#endif

} // namespace SubstanceAir
