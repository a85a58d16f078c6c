#include "framework/render/GraphInstance.h"
#include "framework/render/RenderJob.h"
#include "tests/bridge/TestPackages.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace kvSubstance {

namespace {

const auto sync = [](const auto& to, const auto& what) {
    syncValueFromSubstanceInputToInputInstanceBase(to, what);
};

// A material with an input of every numerical type: t17 to t36, and pick, which alters the one output.
class Synchronisation : public testing::Test {
protected:
    Synchronisation() {
        const int codes[][2] = {{0, 17}, {1, 18}, {2, 19}, {3, 20}, {4, 33}, {8, 34}, {9, 35}, {10, 36}};
        std::string inputs = inputTag("picture", 5, "") + "/>";
        for (const auto& code : codes) inputs += inputTag("t" + std::to_string(code[1]), code[0], "") + "/>";
        inputs += inputTag("pick", 0, "0") + "alteroutputs='" + std::to_string(output) +
                  "'><inputgui widget='slider'/></input>";
        material = createSubstance(packageOf("bottom", outputTag(recording::freshUids(1), "x"), ""),
                                   packageOf("top", outputTag(output, "Output"), inputs));
    }

    SubstanceAir::GraphInstance& graph() { return *material->getGraphInstances().at(0); }

    // The raw words of an instance.
    static std::string words(const SubstanceAir::InputInstanceBase& instance) {
        std::ostringstream text;
        const auto* const raw = static_cast<const int*>(instance.rawData());
        for (size_t k = 0; k < instance.rawSize() / sizeof(int); ++k) text << raw[k] << " ";
        return text.str();
    }

    // Whether the output was out of date, which it is not any more.
    bool takeDirty() { return SubstanceAir::makeRenderJob(graph()) != nullptr; }

    const unsigned int output = recording::freshUids(1);
    kv::Reference<Substance> material;
};

TEST_F(Synchronisation, StoresWhereTheTypesAgree) {
    for (const int type : {16, 17, 18, 19, 20, 32, 33, 34, 35, 36, 64, 21, 37}) {
        const kv::Reference<SubstanceInput> input(
            new SubstanceInput(nullptr, 1, "i", static_cast<Type>(type)));
        for (int k = 0; k < 4; ++k) {
            if (type & 0x20)
                input->setValueI(k + type, k);
            else
                input->setValueF(static_cast<float>(k + type), k);
        }
        std::string changed;
        for (const auto& instance : graph().inputs) {
            const std::string before = words(*instance);
            sync(input.get(), instance.get());
            if (words(*instance) != before) changed += instance->desc.identifier + " ";
        }
        const int twin = type == 16 || type == 32 ? type + 1 : type;
        const std::string expected = "t" + std::to_string(twin) + (twin == 17 ? " pick " : " ");
        EXPECT_EQ(changed, type == 64 || type % 16 == 5 ? "" : expected);
    }
    EXPECT_EQ(words(*graph().findInput("t36")), "36 37 38 39 ");
    EXPECT_EQ(words(*graph().findInput("t18")), "1099956224 1100480512 ");
    EXPECT_EQ(words(*graph().findInput("t33")), "33 ");
}

TEST_F(Synchronisation, MarksOutputsOnRealChangesOnly) {
    SubstanceInput* const pick = material->getInput("pick");
    EXPECT_TRUE(takeDirty());
    sync(material, pick);
    EXPECT_FALSE(takeDirty());
    const float NaN = std::numeric_limits<float>::quiet_NaN();
    for (const float value : {2.0f, NaN}) {
        pick->setValueF(value, 0);
        sync(material, pick);
        EXPECT_TRUE(takeDirty());
        sync(material, pick);
        EXPECT_EQ(takeDirty(), value != value); // a NaN is always new
    }
    EXPECT_EQ(material->numReferences(), 1);
}

TEST_F(Synchronisation, EndsAtTheFirstInstanceOfTheIdentifier) {
    auto& graphs = material->getGraphInstances();
    graphs.push_back(
        boost::shared_ptr<SubstanceAir::GraphInstance>(new SubstanceAir::GraphInstance(graph().desc)));
    const auto second = [&graphs](const char* identifier) {
        return words(*graphs[1]->findInput(identifier));
    };
    SubstanceInput* const pair = material->getInput("t34");
    pair->setValue2I(5, 6);
    sync(material, pair);
    EXPECT_EQ(words(*graph().findInput("t34")), "5 6 ");
    EXPECT_EQ(second("t34"), "0 0 ");

    // Another type under the same identifier: the walk ends there all the same.
    const kv::Reference<SubstanceInput> other(new SubstanceInput(nullptr, 1, "t34", TypeInt1));
    other->setValueI(9, 0);
    sync(material, other.get());
    EXPECT_EQ(words(*graph().findInput("t34")) + second("t34"), "5 6 0 0 ");

    graphs.clear();
    sync(material, pair);
    sync(material, kvString::CString("$substance$::t34_0"));
}

TEST_F(Synchronisation, FindsShownInputsByComponent) {
    SubstanceInput* const triple = material->getInput("t35");
    triple->setValue3I(1, 2, 3);
    const kvString::CString name = triple->getIndexIdentifier(2);
    sync(material, name);
    EXPECT_EQ(words(*graph().findInput("t35")), "0 0 0 "); // hidden
    triple->setWidget(WidgetNone);
    sync(material, triple->getIndexIdentifier(3));
    EXPECT_EQ(words(*graph().findInput("t35")), "0 0 0 "); // no such component
    sync(material, name);
    EXPECT_EQ(words(*graph().findInput("t35")), "1 2 3 ");
}

TEST_F(Synchronisation, StateStringsReachTheEngineWhateverTheirKind) {
    const std::string header = std::string(material->getPackageURL().asChar()) + "\n";
    SubstanceInput* const pick = material->getInput("pick");
    pick->setValueF(3, 0);
    EXPECT_TRUE(takeDirty());
    material->applyStateString((header + std::to_string(pick->getUID()) + "d x\n").c_str());
    EXPECT_TRUE(takeDirty());
    EXPECT_EQ(words(*graph().findInput("pick")), "1077936128 ");
}

} // namespace

} // namespace kvSubstance
