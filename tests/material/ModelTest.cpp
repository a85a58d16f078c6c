// Values, defaults, names, and the material's tables.
#include "tests/material/ModelText.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <limits>

namespace kvSubstance {

namespace {

constexpr float NaN = std::numeric_limits<float>::quiet_NaN();

SubstanceInput::IntOrFloat floats(float a, float b, float c, float d) {
    SubstanceInput::IntOrFloat values;
    values.f[0] = a, values.f[1] = b, values.f[2] = c, values.f[3] = d;
    return values;
}

SubstanceInput::IntOrFloat ints(int a, int b, int c, int d) {
    SubstanceInput::IntOrFloat values;
    values.i[0] = a, values.i[1] = b, values.i[2] = c, values.i[3] = d;
    return values;
}

class Model : public testing::Test {
protected:
    SubstanceInput& newInput(Type type, SubstanceInput::IntOrFloat values) {
        SubstanceInput& input = *material->newInput(++uid, ("input" + std::to_string(uid)).c_str(), type);
        input.setDefault(values, true);
        return input;
    }
    SubstanceInput& floatInput(Type type = TypeFloat4) { return newInput(type, floats(1, 2, 4, 8)); }
    SubstanceInput& intInput(Type type = TypeInt4) { return newInput(type, ints(0, 0, 0, 0)); }

    const kv::Reference<Substance> material{new Substance};
    unsigned int uid = 0;
};

TEST_F(Model, SettersStoreAndTellOnce) {
    struct Case {
        Type type;
        std::function<void(SubstanceInput&)> set;
        const char* value; // from 1,2,4,8 or 0,0,0,0
        int calls;
    };
    const Case cases[] = {
        {TypeFloat4, [](auto& in) { in.setValueF(4, 2); }, "1,2,4,8", 0},
        {TypeFloat4, [](auto& in) { in.setValueF(5, 3); }, "1,2,4,5", 1},
        {TypeFloat4, [](auto& in) { in.setValue2F(1, 3); }, "1,3,4,8", 1},
        {TypeFloat4, [](auto& in) { in.setValue3F(1, 2, 3); }, "1,2,3,8", 1},
        {TypeFloat4, [](auto& in) { in.setValue4F(1, 2, 4, 8); }, "1,2,4,8", 0},
        {TypeFloat4, [](auto& in) { in.setValue4F(4, 3, 2, 1); }, "4,3,2,1", 1},
        {TypeFloat4, [](auto& in) { in.setValueF(NaN, 0), in.setValueF(NaN, 0); }, "nan,2,4,8", 2},
        {TypeFloat4, [](auto& in) { in.setValueI(0x40400000, 0); }, "3,2,4,8", 1}, // as named, not by type
        {TypeInt4, [](auto& in) { in.setValueI(0, 0), in.setValueI(7, 3); }, "0,0,0,7", 1},
        {TypeInt4, [](auto& in) { in.setValue2I(1, 2); }, "1,2,0,0", 1},
        {TypeInt4, [](auto& in) { in.setValue3I(1, 2, 3); }, "1,2,3,0", 1},
        {TypeInt4, [](auto& in) { in.setValue4I(1, 2, 3, 4); }, "1,2,4,0", 1}, // the fourth over the third
        {TypeInt4, [](auto& in) { in.setValue4I(1, 2, 3, 0); }, "1,2,3,0", 1},
        {TypeInt4, [](auto& in) { in.setValue4I(0, 0, 0, 0); }, "0,0,0,0", 0},
        {TypeInt4, [](auto& in) { in.setValueF(1.0f, 1); }, "0,1065353216,0,0", 1},
        {TypeInt4, [](auto& in) { in.setDefault(ints(1, 2, 3, 4), true); }, "1,2,3,4", 0},
    };
    for (const Case& each : cases) {
        SubstanceInput& input = each.type & 0x20 ? intInput() : floatInput();
        Listener listener;
        listener.listenTo(input);
        each.set(input);
        EXPECT_EQ(valueText(input), each.value) << "case " << &each - cases;
        EXPECT_EQ(listener.calls, each.calls) << "case " << &each - cases;
        EXPECT_EQ(input.isModified(), each.calls > 0) << "case " << &each - cases;
    }
}

TEST_F(Model, ReadingConverts) {
    SubstanceInput& input = newInput(TypeFloat4, floats(-2.7f, NaN, 1e20f, -1e20f));
    const int expected[] = {-2, 0, INT_MAX, INT_MIN};
    for (int k = 0; k < 4; ++k) EXPECT_EQ(input.getValueI(k), expected[k]);
    EXPECT_EQ(intInput().getValueF(3), 0.0f);
    EXPECT_EQ(newInput(TypeInt1, ints(5, 0, 0, 0)).getDefaultF(0), 5.0f);
}

TEST_F(Model, DefaultsAreComparedAsFloats) {
    SubstanceInput& image = newInput(TypeImage, ints(0, 0, 0, 0));
    image.setValueI(5, 0);
    EXPECT_TRUE(image.isDefaultValue());
    EXPECT_FALSE(newInput(TypeInt1, ints(-1, 0, 0, 0)).isDefaultValue()); // the bits of a NaN
    SubstanceInput& integer = intInput(TypeInt2);
    integer.setValue2I(INT_MIN, 0); // the bits of -0
    EXPECT_TRUE(integer.isDefaultValue());
    integer.setValueI(1, 1);
    EXPECT_FALSE(integer.isDefaultValue());
    SubstanceInput& pair = floatInput(TypeFloat2);
    pair.setValueF(100, 2); // beyond the components
    EXPECT_TRUE(pair.isDefaultValue());
}

TEST_F(Model, ResetTellsOfEachSlot) {
    SubstanceInput& pair = floatInput(TypeFloat2);
    SubstanceInput& image = newInput(TypeImage, ints(1, 0, 0, 0));
    pair.setValue4F(10, 20, 40, 80);
    image.setValueI(3, 0);
    Listener listener;
    listener.listenTo(*material);
    material->reset();
    EXPECT_EQ(valueText(pair), "1,2,40,80");
    EXPECT_EQ(image.getValueF(0), SubstanceInput::IntOrFloat{{3}}.f[0]);
    EXPECT_EQ(listener.calls, 2);
    material->reset();
    EXPECT_EQ(listener.calls, 2);
}

TEST_F(Model, NamesOfComponents) {
    struct Case {
        Type type;
        Widget widget;
        const char* label;
        const char* name;
    };
    const Case cases[] = {
        {TypeInt2, WidgetNone, "Tint 2", "$substance$:pkg:/x:size_2"},
        {TypeFloat3, WidgetSlider, "Tint 2", "$substance$:pkg:/x:size_2"},
        {TypeFloat3, WidgetColor, "Tint", "$substance$:pkg:/x:size"},
        {TypeFloat4, WidgetImage, "Tint", "$substance$:pkg:/x:size"},
        {TypeFloat1, WidgetSlider, "Tint", "$substance$:pkg:/x:size"},
    };
    material->setPackageURL("pkg:/x");
    for (const Case& each : cases) {
        SubstanceInput& input = *material->newInput(1, "size", each.type);
        input.setLabel("Tint");
        input.setWidget(each.widget);
        EXPECT_STREQ(input.getUniqueLabel(2).asMultibyte().asChar(), each.label);
        EXPECT_STREQ(input.getIndexIdentifier(2).asChar(), each.name);
        input.setLabel(nullptr);
        EXPECT_TRUE(input.getLabel().empty());
    }
}

TEST_F(Model, CombosAreSingleIntegers) {
    for (const Type type : {TypeInt1, TypeInt2, TypeFloat1, static_cast<Type>(32)}) {
        SubstanceInput& input = intInput(type);
        input.setCombo(true);
        EXPECT_EQ(input.isCombo(), type == TypeInt1);
    }
}

TEST_F(Model, TablesReplaceAndIdsStay) {
    SubstanceInput* const first = material->newInput(1, "a", TypeFloat1);
    SubstanceOutput* const output = material->newOutput(2, "a", Format3, 8, 4, 1, true);
    SubstanceInput* const sameName = material->newInput(3, "a", TypeFloat1);
    EXPECT_EQ(material->getInput("a"), sameName);
    EXPECT_EQ(material->getOutput("a"), output);
    EXPECT_EQ(material->getEntity(1), first);
    SubstanceInput* const sameUid = material->newInput(2, "b", TypeFloat1);
    EXPECT_EQ(material->getEntity(2), sameUid);
    EXPECT_EQ(material->getOutput("a"), output);
    EXPECT_EQ(material->getEntity(9), nullptr);
    EXPECT_EQ(material->getInput("c"), nullptr);
    const kv::vector<kvString::CString> ids{"a", "a", "b"};
    EXPECT_EQ(material->getInputIds(), ids);
    EXPECT_EQ(material->numInputs(), 2);
    EXPECT_EQ(material->numOutputs(), 1);
}

TEST_F(Model, ChangesReachTheMaterial) {
    SubstanceInput& input = intInput();
    SubstanceOutput& output = *material->newOutput(9, "out", Format0, 1, 1, 1, false);
    Listener listener;
    listener.listenTo(*material);
    input.setValueI(1, 0);
    output.onModified();
    EXPECT_TRUE(material->isModified() && input.isModified() && output.isModified());
    EXPECT_EQ(listener.calls, 2);
    material->clearModified();
    EXPECT_FALSE(material->isModified() || input.isModified() || output.isModified());
    EXPECT_EQ(listener.calls, 2);
}

TEST_F(Model, CachedTextureIsHeldOnce) {
    const kv::TempReference<ilSIDImage> image(
        new ilSPMemoryImg(ilSize{1, 1, 1, 4}, ilUChar, ilInterleaved, true));
    for (int times = 0; times < 2; ++times) {
        material->setCachedTexture(image);
        EXPECT_EQ(image->numTempReferences(), 2);
    }
    EXPECT_EQ(material->getCachedTexture().get(), image.get());
    material->setCachedTexture(nullptr);
    EXPECT_EQ(image->numTempReferences(), 1);
}

} // namespace

} // namespace kvSubstance
