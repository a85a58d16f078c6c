// Graph instances by themselves: values, what they make dirty, and the key they form.
#include "framework/description/InputDesc.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/RenderJob.h"
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

template <class T>
std::unique_ptr<InputDescNumerical<T>> numerical(unsigned int uid, unsigned int type, T value,
                                                 std::vector<unsigned int> altered = {}) {
    auto input = std::make_unique<InputDescNumerical<T>>();
    input->uid = uid;
    input->type = type;
    input->identifier = "input" + std::to_string(uid);
    input->defaultValue = value;
    input->alteredOutputUids = std::move(altered);
    return input;
}

template <class T>
InputInstanceNumerical<T>& at(GraphInstance& graph, size_t position) {
    return dynamic_cast<InputInstanceNumerical<T>&>(*graph.inputs.at(position));
}

// Outputs 10, 20 and 30, all clean.
struct Fixture {
    GraphDesc desc;
    std::unique_ptr<GraphInstance> graph;

    void build() {
        for (const unsigned int uid : {10u, 20u, 30u}) {
            desc.outputs.emplace_back();
            desc.outputs.back().uid = uid;
        }
        graph = std::make_unique<GraphInstance>(desc);
        for (const auto& output : graph->outputs) output->dirty = false;
    }

    // The uids of the outputs that became dirty since the last call.
    std::string takeDirty() {
        std::string text;
        for (const auto& output : graph->outputs)
            if (output->dirty.exchange(false)) text += std::to_string(output->desc.uid) + " ";
        return text;
    }
};

} // namespace

TEST(GraphInstance, RealChangesMarkTheAlteredOutputsAndTheirNeighbours) {
    Fixture fixture;
    fixture.desc.inputs.push_back(numerical<float>(1, Float, 0.5f, {10, 30}));
    fixture.desc.inputs.push_back(numerical<int>(2, Integer, 7, {15, 31})); // foreign uids are trusted
    fixture.desc.inputs.push_back(std::make_unique<InputDescImage>());
    fixture.desc.inputs.back()->type = Image;
    fixture.desc.inputs.back()->alteredOutputUids = {20};
    fixture.build();
    GraphInstance& graph = *fixture.graph;

    at<float>(graph, 0).setValue(0.5f);
    EXPECT_EQ(fixture.takeDirty(), "");
    at<float>(graph, 0).setValue(0.25f);
    EXPECT_EQ(fixture.takeDirty(), "10 30 ");
    at<float>(graph, 0).reset();
    EXPECT_EQ(fixture.takeDirty(), "10 30 ");
    at<float>(graph, 0).reset();
    EXPECT_EQ(fixture.takeDirty(), "");
    at<float>(graph, 0).setValue(std::nanf(""));
    fixture.takeDirty();
    at<float>(graph, 0).setValue(std::nanf(""));
    EXPECT_EQ(fixture.takeDirty(), "10 30 ") << "a NaN equals nothing";

    at<int>(graph, 1).setValue(8);
    EXPECT_EQ(fixture.takeDirty(), "20 ") << "the one after 15; nothing comes after 31";

    auto& image = dynamic_cast<InputInstanceImage&>(*graph.inputs[2]);
    image.reset();
    EXPECT_EQ(fixture.takeDirty(), "");
    const auto picture = boost::make_shared<InputImage>(SubstanceTextureInput{});
    image.setImage(picture);
    EXPECT_EQ(fixture.takeDirty(), "20 ");
    image.setImage(picture);
    EXPECT_EQ(fixture.takeDirty(), "");
}

TEST(GraphInstance, RawDataIsWhatTheEngineIsGiven) {
    Fixture fixture;
    fixture.desc.inputs.push_back(numerical<Math::Vector3<int>>(1, Integer3, {1, 2, 3}));
    fixture.desc.inputs.push_back(std::make_unique<InputDescImage>());
    fixture.build();
    const int numbers[] = {1, 2, 3};
    ASSERT_EQ(fixture.graph->inputs[0]->rawSize(), sizeof numbers);
    EXPECT_EQ(std::memcmp(fixture.graph->inputs[0]->rawData(), numbers, sizeof numbers), 0);

    auto& image = dynamic_cast<InputInstanceImage&>(*fixture.graph->inputs[1]);
    const auto pushed = [&] { return *static_cast<const SubstanceTextureInput* const*>(image.rawData()); };
    EXPECT_EQ(image.rawSize(), sizeof(void*));
    EXPECT_EQ(pushed(), nullptr);
    image.setImage(boost::make_shared<InputImage>(SubstanceTextureInput{"pixels", 3, 2, 0, 0, 1}));
    EXPECT_EQ(pushed()->level0Width, 3);
}

TEST(GraphInstance, TheKeyIsMadeOfSystemInputsInOrder) {
    Fixture fixture;
    fixture.desc.inputs.push_back(numerical<int>(1, Integer, 0x01020304));
    fixture.desc.inputs.push_back(numerical<int>(2, Integer, 5));
    fixture.desc.inputs.push_back(numerical<Math::Vector2<int>>(3, Integer2, {8, 9}));
    fixture.desc.inputs[0]->isSystem = fixture.desc.inputs[2]->isSystem = true;
    fixture.build();
    const int expected[] = {0x01020304, 8, 9};
    const auto bytes = fixture.graph->keyBytes();
    ASSERT_EQ(bytes.size(), sizeof expected);
    EXPECT_EQ(std::memcmp(bytes.data(), expected, sizeof expected), 0);
}

#ifdef GTEST_HAS_DEATH_TEST
TEST(GraphInstance, OneThatRendersNothingMakesNoRenderer) {
    // A process of its own, so that there is no renderer yet.
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto edit = [] {
        recording::reset();
        {
            Fixture fixture;
            fixture.desc.inputs.push_back(numerical<int>(1, Integer, 5, {10}));
            fixture.build();
            at<int>(*fixture.graph, 0).setValue(6);
            fixture.graph->outputs[1]->grabResult();
        }
        if (!recording::takeTrace().empty()) std::exit(1); // the renderer begins with a linker context
        std::exit(0);
    };
    EXPECT_EXIT(edit(), testing::ExitedWithCode(0), "");
}
#endif

TEST(GraphInstance, FindsTheFirstInputOfAnIdentifier) {
    Fixture fixture;
    for (const char* const identifier : {"a", "", "b", "a"}) {
        fixture.desc.inputs.push_back(numerical<int>(1, Integer, 0));
        fixture.desc.inputs.back()->identifier = identifier;
    }
    fixture.build();
    EXPECT_EQ(fixture.graph->findInput("a"), fixture.graph->inputs[0].get());
    EXPECT_EQ(fixture.graph->findInput("b"), fixture.graph->inputs[2].get());
    EXPECT_EQ(fixture.graph->findInput(""), nullptr);
    EXPECT_EQ(fixture.graph->findInput("c"), nullptr);
    const Fixture other;
    EXPECT_NE(GraphInstance(other.desc).identity, fixture.graph->identity);
}

struct TextCase {
    const char* text;
    const char* result; // the value afterwards; null: refused
};

TEST(InputInstance, ValuesAsText) {
    Fixture fixture;
    fixture.desc.inputs.push_back(numerical<Math::Vector2<float>>(1, Float2, {0.1f, -2}));
    fixture.desc.inputs.push_back(numerical<Math::Vector4<int>>(2, Integer4, {}));
    fixture.build();
    const char* const before[] = {"0.1,-2", "0,0,0,0"};
    const std::vector<TextCase> cases[] = {
        {{"1,2", "1,2"},
         {"1234567,1e-9", "1.23457e+06,1e-09"},
         {"1", nullptr},
         {"1,2,3", nullptr},
         {"1, 2", nullptr},
         {"", nullptr}},
        {{"1,-2,2147483647,4", "1,-2,2147483647,4"}, {"1,2,3,4.0", nullptr}, {"1,2,3,2147483648", nullptr}}};
    for (size_t i = 0; i < 2; ++i)
        for (const TextCase& each : cases[i]) {
            auto& input = dynamic_cast<InputInstanceNumericalBase&>(*fixture.graph->inputs[i]);
            input.reset();
            EXPECT_EQ(input.setValueFromText(each.text), each.result != nullptr) << each.text;
            EXPECT_EQ(input.valueAsText(), each.result ? each.result : before[i]) << each.text;
        }
}

} // namespace SubstanceAir
