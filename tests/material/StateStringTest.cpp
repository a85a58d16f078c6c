#include "tests/material/ModelText.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <limits>

namespace kvSubstance {

namespace {

// Inputs of every type with uids that are their type, set to 1, 2, 3, 4.
kv::Reference<Substance> allTypes(const char* url) {
    kv::Reference<Substance> material(new Substance);
    material->setPackageURL(url);
    for (const int type : {36, 64, 17, 18, 19, 20, 33, 34, 35, 16, 32}) {
        SubstanceInput* const input = material->newInput(
            static_cast<unsigned int>(type), std::to_string(type).c_str(), static_cast<Type>(type));
        for (int k = 0; k < 4; ++k) {
            if (type & 0x20)
                input->setValueI(k + 1, k);
            else
                input->setValueF(static_cast<float>(k + 1), k);
        }
    }
    material->newOutput(7, "out", Format0, 1, 1, 1, false);
    material->clearModified();
    return material;
}

TEST(StateString, WholeText) {
    EXPECT_STREQ(allTypes("pkg:/a")->getStateString().asChar(), "pkg:/a\n"
                                                                "36d i4 1 2 3 4\n"
                                                                "17d f1 1.000000\n"
                                                                "18d f2 1.000000 2.000000\n"
                                                                "19d f3 1.000000 2.000000 3.000000\n"
                                                                "20d f4 1.000000 2.000000 3.000000 4.000000\n"
                                                                "33d i1 1\n"
                                                                "34d i2 1 2\n"
                                                                "35d i3 1 2 3\n"
                                                                "16d f1 1.000000\n"
                                                                "32d i1 1\n");
}

TEST(StateString, ExtremeValues) {
    const kv::Reference<Substance> material(new Substance);
    SubstanceInput* const input = material->newInput(UINT_MAX, "a", TypeFloat4);
    const float infinity = std::numeric_limits<float>::infinity();
    input->setValue4F(-FLT_MAX, 0.1234567f, infinity, std::numeric_limits<float>::quiet_NaN());
    material->newInput(0, "b", TypeInt2)->setValue2I(INT_MIN, INT_MAX);
    const kvString::CString state = material->getStateString();
    EXPECT_STREQ(state.asChar(),
                 "\n"
                 "4294967295d f4 -340282346638528859811704183484516925440.000000 0.123457 inf nan\n"
                 "0d i2 -2147483648 2147483647\n");
    input->setValue4F(0, 0, 0, 0);
    material->getInput("b")->setValue2I(0, 0);
    material->applyStateString(state);
    EXPECT_EQ(material->getStateString(), state);
    EXPECT_EQ(input->getValueF(0), -FLT_MAX);
    EXPECT_EQ(input->getValueF(1), 0.123457f);
}

TEST(StateString, Applying) {
    struct Case {
        const char* lines;
        unsigned int uid;
        const char* value; // of the input of that uid
    };
    const Case cases[] = {
        {"18d f2 5.5 -6e1\n", 18, "5.5,-60,3,4"},
        {"17 f1 5", 17, "5,2,3,4"}, // neither the letter nor the last line feed is needed
        {"99d i1 5\n7d i1 5\n\n33d i1 5", 33, "5,2,3,4"}, // unknown, an output, nothing
        {"33d i1 x9\n", 33, "0,2,3,4"},
        {"35d i3 5\n", 35, "5,0,0,4"}, // fields that are not there
        {"36d i4 5 6 7 8\n", 36, "5,6,8,4"},
        {"34d i9 5 6\n", 34, "5,2,3,4"},
        {"34d i\n", 34, "0,2,3,4"},
        {"33d f1 1\n", 33, "1065353216,2,3,4"}, // the line chooses the setter
        {"18d i2 0 0\n", 18, "0,0,3,4"},
        {"18d F2 0 0\n", 18, "1,2,3,4"},
        {"18d\n", 18, "1,2,3,4"},
        {" 18d f1 5\n+18d f1 5\n4294967314d f1 5\n", 18, "1,2,3,4"}, // no digit first; saturated
        {"17d f1 5\r\n", 17, "5,2,3,4"},
    };
    for (const Case& each : cases) {
        const auto material = allTypes("pkg:/a");
        material->applyStateString((std::string("pkg:/a\n") + each.lines).c_str());
        const auto* const input = static_cast<SubstanceInput*>(material->getEntity(each.uid));
        EXPECT_EQ(valueText(*input), each.value) << each.lines;
        EXPECT_EQ(material->isModified(), valueText(*input) != "1,2,3,4") << each.lines;
    }
}

TEST(StateString, ItsOwnIsNoChangeAndAnothersIsRefused) {
    const auto material = allTypes("pkg:/a");
    material->getInput("36")->setValueI(3, 3); // a fourth value that its setter would not move
    for (const char* const header : {"pkg:/A\n", "pkg:/a\r\n", "pkg:/a \n", "\n", ""})
        material->applyStateString((std::string(header) + "17d f1 5\n").c_str());
    material->clearModified();
    const kvString::CString state = material->getStateString();
    EXPECT_EQ(material->getInput("17")->getValueF(0), 1.0f);
    material->getInput("36")->setValue4I(1, 2, 3, 3);
    material->clearModified();
    material->applyStateString(state);
    EXPECT_FALSE(material->isModified());
}

TEST(StateString, AListenerMayDropTheMaterial) {
    auto material = allTypes("pkg:/a");
    const kv::Reference<SubstanceInput> last(material->getInput("34"));
    struct Dropper {
        kv::Reference<Substance>& dropped;
        kvRTB::SignalBase tracking;
        void called() { dropped.reset(); }
    } dropper{material, {}};
    material->getModifiedSignal().connect(kvRTB::FunctionVoidMember<Dropper>(&dropper, &Dropper::called),
                                          dropper.tracking);
    material->applyStateString("pkg:/a\n33d i1 5\n34d i2 6 7\n");
    EXPECT_FALSE(material);
    EXPECT_EQ(valueText(*last), "6,7,3,4");
}

} // namespace

} // namespace kvSubstance
