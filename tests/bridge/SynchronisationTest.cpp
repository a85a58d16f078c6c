#include "framework/render/GraphInstance.h"
#include "framework/render/RenderJob.h"
#include "tests/ClassicText.h"
#include "tests/bridge/TestPackages.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace kvSubstance;

const auto sync = [](const auto& to, const auto& what) {
    syncValueFromSubstanceInputToInputInstanceBase(to, what);
};

// The raw words of an instance.
std::string words(const SubstanceAir::InputInstanceBase& instance) {
    ClassicText text;
    const auto* const raw = static_cast<const int*>(instance.rawData());
    for (size_t k = 0; k < instance.rawSize() / sizeof(int); ++k) text << raw[k] << " ";
    return text.str();
}

// A material with an input of every numerical type: t17 to t36, and pick, which alters the one output.
class Synchronisation : public testing::Test {
protected:
    Synchronisation() {
        const int codes[][2] = {{0, 17}, {1, 18}, {2, 19}, {3, 20}, {4, 33}, {8, 34}, {9, 35}, {10, 36}};
        std::string inputs = inputTag("picture", 5, "") + "/>";
        for (const auto& code : codes) inputs += inputTag("t" + std::to_string(code[1]), code[0], "") + "/>";
        const unsigned int output = packages::freshUids(1);
        inputs += inputTag("pick", 0, "0") + "alteroutputs='" + std::to_string(output) + "'/>";
        material = createSubstance(plainPackage(), packageOf("top", outputTag(output, "Output"), inputs));
    }
    SubstanceAir::GraphInstance& graph() { return *material->getGraphInstances().at(0); }
    std::string wordsOf(const char* identifier) { return words(*graph().findInput(identifier)); }

    // Whether the output was out of date, which it is not any more.
    bool takeDirty() { return SubstanceAir::makeRenderJob(graph()) != nullptr; }

    kv::Reference<Substance> material;
};

TEST_F(Synchronisation, StoresWhereTheTypesAgree) {
    const struct {
        int type;
        const char* changed; // the instances
    } cases[] = {{16, "t17 pick "}, {17, "t17 pick "}, {18, "t18 "}, {19, "t19 "}, {20, "t20 "},
                 {32, "t33 "},      {33, "t33 "},      {34, "t34 "}, {35, "t35 "}, {36, "t36 "},
                 {64, ""},          {21, ""},          {37, ""}};
    for (const auto& c : cases) {
        SubstanceInput input(nullptr, 1, "i", static_cast<Type>(c.type));
        input.setDefault({{c.type, c.type + 1, c.type + 2, c.type + 3}}, true);
        std::string changed;
        for (const auto& instance : graph().inputs) {
            const std::string before = words(*instance);
            sync(&input, instance.get());
            if (words(*instance) != before) changed += instance->desc.identifier + " ";
        }
        EXPECT_EQ(changed, c.changed) << c.type;
    }
    EXPECT_EQ(wordsOf("t36"), "36 37 38 39 ");
    EXPECT_EQ(wordsOf("t18"), "18 19 ");
}

TEST_F(Synchronisation, MarksOutputsOnRealChangesOnly) {
    SubstanceInput* const pick = material->getInput("pick");
    EXPECT_TRUE(takeDirty());
    for (const float value : {0.0f, 2.0f, std::numeric_limits<float>::quiet_NaN()}) {
        pick->setValueF(value, 0);
        sync(material, pick);
        EXPECT_EQ(takeDirty(), value != 0);
        sync(material, pick);
        EXPECT_EQ(takeDirty(), value != value); // a NaN is always new
    }
    // A line of a state string hands on the value, whatever the line's kind.
    pick->setValueF(3, 0);
    const std::string header = std::string(material->getPackageURL().asChar()) + "\n";
    material->applyStateString((header + std::to_string(pick->getUID()) + "d x\n").c_str());
    EXPECT_TRUE(takeDirty());
    EXPECT_EQ(wordsOf("pick"), "1077936128 ");
}

TEST_F(Synchronisation, EndsAtTheFirstInstanceOfTheIdentifier) {
    auto& graphs = material->getGraphInstances();
    graphs.push_back(
        boost::shared_ptr<SubstanceAir::GraphInstance>(new SubstanceAir::GraphInstance(graph().desc)));
    const auto both = [&] { return wordsOf("t34") + words(*graphs[1]->findInput("t34")); };
    SubstanceInput* const pair = material->getInput("t34");
    pair->setValue2I(5, 6);
    sync(material, pair);
    EXPECT_EQ(both(), "5 6 0 0 ");

    graphs.clear();
    sync(material, pair);
}

TEST_F(Synchronisation, FindsShownInputsByComponent) {
    SubstanceInput* const triple = material->getInput("t35");
    triple->setValue3I(1, 2, 3);
    sync(material, triple->getIndexIdentifier(2));
    EXPECT_EQ(wordsOf("t35"), "0 0 0 "); // hidden
    triple->setWidget(WidgetNone);
    sync(material, triple->getIndexIdentifier(3));
    EXPECT_EQ(wordsOf("t35"), "0 0 0 "); // no such component
    sync(material, triple->getIndexIdentifier(2));
    EXPECT_EQ(wordsOf("t35"), "1 2 3 ");
}

} // namespace
