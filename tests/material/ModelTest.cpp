// Values, defaults, names, and the material's tables.
#include "tests/material/ModelText.h"

#include <gtest/gtest.h>

#include <climits>
#include <limits>

namespace {

using namespace kvSubstance;
using In = SubstanceInput;

constexpr float NaN = std::numeric_limits<float>::quiet_NaN();

class Model : public testing::Test {
protected:
    const kv::Reference<Substance> material{new Substance};
};

TEST_F(Model, SettersStoreAndTellOnce) {
    const struct {
        Type type;
        void (*set)(In&);
        const char* value; // from 1,2,4,8 or 0,0,0,0
        int calls;
    } cases[] = {
        {TypeFloat4, [](In& in) { in.setValueF(4, 2), in.setValueF(5, 3); }, "1,2,4,5", 1},
        {TypeFloat4, [](In& in) { in.setValue2F(3, 1); }, "3,1,4,8", 1},
        {TypeFloat4, [](In& in) { in.setValue3F(3, 2, 1); }, "3,2,1,8", 1},
        {TypeFloat4, [](In& in) { in.setValueF(NaN, 0), in.setValueF(NaN, 0); }, "nan,2,4,8", 2},
        {TypeFloat4, [](In& in) { in.setValueI(0x40400000, 0); }, "3,2,4,8", 1}, // as named, not by type
        {TypeInt4, [](In& in) { in.setValue2I(1, 2); }, "1,2,0,0", 1},
        {TypeInt4, [](In& in) { in.setValue4I(1, 2, 3, 4); }, "1,2,4,0", 1}, // the fourth over the third
        {TypeInt4, [](In& in) { in.setValue4I(1, 2, 3, 0); }, "1,2,3,0", 1},
        {TypeInt4,
         [](In& in) {
             in.setDefault({{1, 2, 3, 4}}, true);
         },
         "1,2,3,4", 0},
    };
    for (const auto& each : cases) {
        In& input = *material->newInput(1, "a", each.type);
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
    In& pair = *material->newInput(1, "pair", TypeInt2);
    pair.setDefault({{0, -1, 0, 0}}, true);
    EXPECT_FALSE(pair.isDefaultValue()); // -1 has the bits of a NaN
    pair.setDefault({}, false);
    pair.setValue4I(INT_MIN, 0, 7, 7); // the least int has the bits of -0; what lies behind does not count
    EXPECT_TRUE(pair.isDefaultValue());
    pair.setValueI(1, 1);
    EXPECT_FALSE(pair.isDefaultValue());
    In& image = *material->newInput(2, "image", TypeImage);
    image.setValueF(-2.7f, 0);
    EXPECT_TRUE(image.isDefaultValue());

    // Each slot tells of its own reset; images are left alone.
    Listener listener;
    listener.listenTo(*material);
    material->reset();
    EXPECT_EQ(valueText(pair) + " " + valueText(image), "0,0,7,0 -2.7,0,0,0");
    EXPECT_EQ(listener.calls, 2);
    EXPECT_EQ(image.getValueI(0), -2);
}

TEST_F(Model, NamesOfComponents) {
    material->setPackageURL("pkg:/x");
    const auto names = [&](Type type, Widget widget) {
        In& input = *material->newInput(1, "size", type);
        input.setLabel("Tint");
        input.setWidget(widget);
        return input.getUniqueLabel(2).asMultibyte().append(input.getIndexIdentifier(2));
    };
    EXPECT_STREQ(names(TypeInt2, WidgetNone).asChar(), "Tint 2$substance$:pkg:/x:size_2");
    EXPECT_STREQ(names(TypeFloat1, WidgetSlider).asChar(), "Tint$substance$:pkg:/x:size");
    EXPECT_STREQ(names(TypeFloat3, WidgetColor).asChar(), "Tint$substance$:pkg:/x:size");
    EXPECT_STREQ(names(TypeFloat4, WidgetImage).asChar(), "Tint$substance$:pkg:/x:size");
}

} // namespace
