#include "tests/material/ModelText.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>

namespace {

using namespace kvSubstance;

// Inputs of every type with uids that are their type, set to 1, 2, 3, 4.
kv::Reference<Substance> allTypes() {
    kv::Reference<Substance> material(new Substance);
    material->setPackageURL("pkg:/a");
    for (const int type : {36, 64, 17, 18, 19, 20, 33, 34, 35, 16, 32}) {
        const unsigned int uid = static_cast<unsigned int>(type);
        SubstanceInput* const input =
            material->newInput(uid, std::to_string(type).c_str(), static_cast<Type>(type));
        input->setValue4F(1, 2, 3, 4);
        if (type & 0x20) input->setDefault({{1, 2, 3, 4}}, true);
    }
    material->newOutput(7, "out", Format0, 1, 1, 1, false);
    material->clearModified();
    return material;
}

TEST(StateString, WholeText) {
    const auto material = allTypes();
    SubstanceInput* const floats = material->getInput("20");
    SubstanceInput* const ints = material->newInput(UINT_MAX, "ints", TypeInt2);
    floats->setValue4F(-FLT_MAX, 0.1234567f, HUGE_VALF, NAN);
    ints->setValue2I(INT_MIN, INT_MAX);
    const kvString::CString state = material->getStateString();
    EXPECT_STREQ(state.asChar(), "pkg:/a\n36d i4 1 2 3 4\n17d f1 1.000000\n18d f2 1.000000 2.000000\n"
                                 "19d f3 1.000000 2.000000 3.000000\n"
                                 "20d f4 -340282346638528859811704183484516925440.000000 0.123457 inf nan\n"
                                 "33d i1 1\n34d i2 1 2\n35d i3 1 2 3\n16d f1 1.000000\n32d i1 1\n"
                                 "4294967295d i2 -2147483648 2147483647\n");

    floats->setValue4F(0, 0, 0, 0);
    ints->setValue2I(0, 0);
    material->applyStateString(state);
    EXPECT_EQ(material->getStateString(), state);
    EXPECT_EQ(floats->getValueF(1), 0.123457f);

    material->clearModified();
    for (const char* const header : {"pkg:/A\n", "pkg:/a\r\n", "pkg:/a \n", "\n", ""})
        material->applyStateString((std::string(header) + "17d f1 5\n").c_str());
    EXPECT_FALSE(material->isModified());
}

TEST(StateString, Applying) {
    const struct {
        const char* lines;
        const char* identifier;
        const char* value; // of that input
    } cases[] = {
        {"18d f2 5.5 -6e1\n", "18", "5.5,-60,3,4"},
        {"17 f1 5", "17", "5,2,3,4"}, // neither the letter nor the last line feed is needed
        {"99d i1 5\n7d i1 5\n\n33d i1 5\r\n", "33", "5,2,3,4"}, // unknown, an output, nothing
        {"35d i3 5 x6\n", "35", "5,0,0,4"},                     // no numbers, no field
        {"36d i4 5 6 7 8\n", "36", "5,6,8,4"},
        {"18d f2 5\n33d i1 6\n", "18", "5,0,3,4"}, // the next line is not this one's
        {"18d f2 5 6 7\n", "18", "5,6,3,4"},
        {"18d f2  5 6\n", "18", "0,5,3,4"},
        {"33d i1 99999999999\n", "33", "2147483647,2,3,4"},
        {"34d i9 5 6\n", "34", "5,2,3,4"},
        {"34d i\n", "34", "0,2,3,4"},
        {"33d f1 1\n", "33", "1065353216,2,3,4"}, // the line chooses the setter
        {"18d F2 0 0\n18d\n", "18", "1,2,3,4"},
        {" 18d f1 5\n+18d f1 5\n4294967314d f1 5\n", "18", "1,2,3,4"}, // no digit first; saturated
    };
    for (const auto& each : cases) {
        const auto material = allTypes();
        material->applyStateString((std::string("pkg:/a\n") + each.lines).c_str());
        EXPECT_EQ(valueText(*material->getInput(each.identifier)), each.value) << each.lines;
    }
}

TEST(StateString, AListenerMayDropTheMaterial) {
    for (const bool isReset : {false, true}) {
        auto material = allTypes();
        const kv::Reference<SubstanceInput> last(material->getInput("20"));
        Listener dropper;
        dropper.act = [&] { material.reset(); };
        dropper.listenTo(*material);
        isReset ? material->reset() : material->applyStateString("pkg:/a\n17d f1 0\n20d f4 0 0 0 0\n");
        EXPECT_FALSE(material);
        EXPECT_EQ(valueText(*last), "0,0,0,0");
    }
}

TEST(StateString, TheTextMayChangeWhileItIsApplied) {
    const auto material = allTypes();
    kvString::CString state = "pkg:/a\n17d f1 5\n33d i1 6\n";
    Listener writer;
    writer.act = [&] { state = kvString::CString(); };
    writer.listenTo(*material);
    material->applyStateString(state);
    EXPECT_TRUE(state.empty());
    EXPECT_EQ(material->getInput("33")->getValueI(0), 6);
}

} // namespace
