// Values, defaults, names, and the material's tables.
#include "tests/material/ModelText.h"

#include <gtest/gtest.h>

#include <climits>
#include <limits>

namespace kvSubstance {

namespace {

constexpr float NaN = std::numeric_limits<float>::quiet_NaN();

class Model : public testing::Test {
protected:
    SubstanceInput& newInput(Type type) {
        const unsigned int uid = static_cast<unsigned int>(material->numInputs());
        return *material->newInput(uid, std::to_string(uid).c_str(), type);
    }
    const kv::Reference<Substance> material{new Substance};
};

TEST_F(Model, SettersStoreAndTellOnce) {
    using In = SubstanceInput;
    struct Case {
        Type type;
        void (*set)(In&);
        const char* value; // from 1,2,4,8 or 0,0,0,0
        int calls;
    };
    const Case cases[] = {
        {TypeFloat4, [](In& in) { in.setValueF(4, 2), in.setValueF(5, 3); }, "1,2,4,5", 1},
        {TypeFloat4, [](In& in) { in.setValue2F(1, 3); }, "1,3,4,8", 1},
        {TypeFloat4, [](In& in) { in.setValue3F(1, 2, 3); }, "1,2,3,8", 1},
        {TypeFloat4, [](In& in) { in.setValue4F(4, 3, 2, 1); }, "4,3,2,1", 1},
        {TypeFloat4, [](In& in) { in.setValueF(NaN, 0), in.setValueF(NaN, 0); }, "nan,2,4,8", 2},
        {TypeFloat4, [](In& in) { in.setValueI(0x40400000, 0); }, "3,2,4,8", 1}, // as named, not by type
        {TypeInt4, [](In& in) { in.setValueI(0, 0), in.setValueI(7, 3); }, "0,0,0,7", 1},
        {TypeInt4, [](In& in) { in.setValue2I(1, 2); }, "1,2,0,0", 1},
        {TypeInt4, [](In& in) { in.setValue3I(1, 2, 3); }, "1,2,3,0", 1},
        {TypeInt4, [](In& in) { in.setValue4I(1, 2, 3, 4); }, "1,2,4,0", 1}, // the fourth over the third
        {TypeInt4, [](In& in) { in.setValue4I(1, 2, 3, 0); }, "1,2,3,0", 1},
        {TypeInt4, [](In& in) { in.setValue4I(0, 0, 0, 0); }, "0,0,0,0", 0},
        {TypeInt4,
         [](In& in) {
             in.setDefault(In::IntOrFloat{{1, 2, 3, 4}}, true);
         },
         "1,2,3,4", 0},
    };
    for (const Case& each : cases) {
        In& input = newInput(each.type);
        if (each.type == TypeFloat4) input.setValue4F(1, 2, 4, 8);
        material->clearModified();
        Listener listener;
        listener.listenTo(*material);
        each.set(input);
        EXPECT_EQ(valueText(input), each.value) << "case " << &each - cases;
        EXPECT_EQ(listener.calls, each.calls) << "case " << &each - cases;
        EXPECT_EQ(input.isModified() && material->isModified(), each.calls > 0) << "case " << &each - cases;
    }
}

TEST_F(Model, DefaultsAreComparedAsFloats) {
    SubstanceInput& pair = newInput(TypeInt2);
    pair.setDefault(SubstanceInput::IntOrFloat{{0, -1, 0, 0}}, true);
    EXPECT_FALSE(pair.isDefaultValue()); // -1 has the bits of a NaN
    pair.setDefault(SubstanceInput::IntOrFloat{}, false);
    pair.setValue4I(INT_MIN, 0, 7, 7); // the least int has the bits of -0; what lies behind does not count
    EXPECT_TRUE(pair.isDefaultValue());
    pair.setValueI(1, 1);
    EXPECT_FALSE(pair.isDefaultValue());
    SubstanceInput& image = newInput(TypeImage);
    image.setValueF(5, 0);
    EXPECT_TRUE(image.isDefaultValue());

    // Each slot tells of its own reset; images are left alone.
    Listener listener;
    listener.listenTo(*material);
    material->reset();
    EXPECT_EQ(valueText(pair) + " " + valueText(image), "0,0,7,0 5,0,0,0");
    EXPECT_EQ(listener.calls, 2);

    SubstanceInput& floats = newInput(TypeFloat4);
    floats.setValue4F(-2.7f, NaN, 1e20f, -1e20f);
    int k = 0;
    for (const int expected : {-2, 0, INT_MAX, INT_MIN}) EXPECT_EQ(floats.getValueI(k++), expected);
}

TEST_F(Model, NamesOfComponents) {
    struct Case {
        Type type;
        Widget widget;
        bool apart;
    };
    material->setPackageURL("pkg:/x");
    for (const Case& each : {Case{TypeInt2, WidgetNone, true}, Case{TypeFloat3, WidgetSlider, true},
                             Case{TypeFloat3, WidgetColor, false}, Case{TypeFloat4, WidgetImage, false},
                             Case{TypeFloat1, WidgetSlider, false}}) {
        SubstanceInput& input = *material->newInput(1, "size", each.type);
        input.setLabel("Tint");
        input.setWidget(each.widget);
        EXPECT_STREQ(input.getUniqueLabel(2).asMultibyte().asChar(), each.apart ? "Tint 2" : "Tint");
        EXPECT_STREQ(input.getIndexIdentifier(2).asChar(),
                     each.apart ? "$substance$:pkg:/x:size_2" : "$substance$:pkg:/x:size");
        input.setLabel(nullptr);
        EXPECT_TRUE(input.getLabel().empty());
    }
}

TEST_F(Model, TablesReplaceAndIdsStay) {
    SubstanceInput* const first = material->newInput(1, "a", TypeFloat1);
    SubstanceOutput* const output = material->newOutput(2, "a", Format3, 8, 4, 1, true);
    SubstanceInput* const sameName = material->newInput(3, "a", TypeFloat1);
    EXPECT_EQ(material->getInput("a"), sameName);
    EXPECT_EQ(material->getEntity(1), first);
    EXPECT_EQ(material->getEntity(2), output);
    SubstanceInput* const sameUid = material->newInput(2, "b", TypeFloat1);
    EXPECT_EQ(material->getEntity(2), sameUid);
    EXPECT_EQ(material->getOutput("a"), output);
    EXPECT_TRUE(!material->getEntity(9) && !material->getInput("c"));
    EXPECT_EQ(material->getInputIds(), (kv::vector<kvString::CString>{"a", "a", "b"}));
    EXPECT_TRUE(material->numInputs() == 2 && material->numOutputs() == 1);
}

} // namespace

} // namespace kvSubstance
