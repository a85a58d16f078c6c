// The emission of the modified signal: rings and bombs, what callbacks may destroy, and who outlives whom.
#include "tests/material/ModelText.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <thread>

namespace {

using namespace kvSubstance;

kv::Reference<SubstanceInput> freeInput() {
    return new SubstanceInput(nullptr, 1, "free", TypeInt1);
}

TEST(Emission, ReachesWhatIsConnectedMeanwhileAndSkipsTheBlocked) {
    const auto input = freeInput();
    Listener blocked, late, adder;
    adder.act = [&] { late.listenTo(*input); };
    blocked.listenTo(*input);
    adder.listenTo(*input);
    kvRTB::SignalWalk(input->getModifiedSignal()).first()->setBlocked(true);
    input->onModified();
    EXPECT_TRUE(blocked.calls == 0 && late.calls == 1);
}

TEST(Emission, RingsAndBombsEndAtTheirLimits) {
    for (const bool isBomb : {false, true}) {
        const auto a = freeInput(), b = freeInput();
        Listener onA, onB;
        onA.act = [&] { b->onModified(); };
        onB.act = [&] { a->onModified(); };
        for (int connections = 0; connections < (isBomb ? 3 : 1); ++connections) {
            onA.listenTo(*a);
            onB.listenTo(*b);
        }
        const int limit =
            isBomb ? SubstanceEntity::MaxCallbacksPerEmission : SubstanceEntity::MaxNestedEmissions;
        for (int times = 1; times <= 2; ++times) { // the second one has all its depth again
            a->onModified();
            EXPECT_EQ(onA.calls + onB.calls, times * limit);
        }
    }
}

TEST(Emission, LetsGoOfTheConnectionWhenACallbackThrows) {
    const auto input = freeInput();
    Listener thrower;
    thrower.act = [] { throw std::runtime_error("callback"); };
    thrower.listenTo(*input);
    for (int value = 1; value <= 1 + SubstanceEntity::MaxNestedEmissions; ++value) {
        EXPECT_THROW(input->setValueI(value, 0), std::runtime_error);
        EXPECT_EQ(input->getValueI(0), value);
    }
    // Another thread gets the connection's lock: a forgotten one would hold it for ever.
    kvRTB::SignalWalk walk(input->getModifiedSignal());
    kvRTB::SignalItem* const item = walk.first();
    std::thread([item] { item->lock(), item->unlock(); }).join();
}

TEST(Emission, CallbacksMayDestroyReceiversAndTheEmitter) {
    auto input = freeInput();
    auto own = std::make_unique<Listener>();
    auto later = std::make_unique<Listener>();
    Listener last;
    own->act = [&] { later.reset(), input.reset(), own.reset(); };
    for (Listener* each : {own.get(), later.get(), &last}) each->listenTo(*input);
    input->setValueI(1, 0);
    EXPECT_FALSE(input || own || later);
    EXPECT_EQ(last.calls, 0); // its connection ended with the emitter
}

TEST(Emission, ReplacedInputsStayConnectedUntilTheyOutliveTheMaterial) {
    kv::Reference<Substance> material(new Substance);
    material->setPackageURL("pkg:/x");
    const kv::Reference<SubstanceInput> replaced(material->newInput(1, "a", TypeInt1));
    // By a caller whose text belongs to what is being replaced.
    const SubstanceInput* const gone = material->newInput(2, "b", TypeInt1);
    material->newInput(2, gone->getIdentifier(), TypeInt1);
    SubstanceInput* const sameName = material->newInput(3, "a", TypeInt1);
    SubstanceOutput* const sameUid = material->newOutput(2, "a", Format3, 8, 4, 1, true);
    EXPECT_EQ(material->getInputIds(), (kv::vector<kvString::CString>{"a", "b", "b", "a"}));
    EXPECT_TRUE(material->getInput("a") == sameName && material->getOutput("a") == sameUid);
    EXPECT_TRUE(material->getEntity(1) == replaced.get() && material->getEntity(2) == sameUid);

    material->clearModified();
    replaced->setValueI(1, 0);
    EXPECT_TRUE(material->isModified());
    EXPECT_STREQ(replaced->getIndexIdentifier(0).asChar(), "$substance$:pkg:/x:a");
    material.reset();
    EXPECT_STREQ(replaced->getIndexIdentifier(0).asChar(), "$substance$::a");
    replaced->setValueI(7, 0);
}

} // namespace
