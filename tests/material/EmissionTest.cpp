// The emission of the modified signal: rings and bombs, what callbacks may destroy, and who outlives whom.
#include "tests/material/ModelText.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <thread>

namespace kvSubstance {

namespace {

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

TEST(Emission, RingsEndAtTheNestingLimit) {
    const auto a = freeInput();
    const auto b = freeInput();
    Listener onA, onB;
    onA.act = [&] { b->onModified(); };
    onB.act = [&] { a->onModified(); };
    onA.listenTo(*a);
    onB.listenTo(*b);
    for (int times = 1; times <= 2; ++times) { // the second one has all its depth again
        a->setValueI(times, 0);
        EXPECT_EQ(onA.calls + onB.calls, times * SubstanceEntity::MaxNestedEmissions);
    }
}

TEST(Emission, BombsEndAtTheCallbackLimit) {
    const auto input = freeInput();
    Listener fuse;
    fuse.act = [&] { input->onModified(); };
    for (int times = 0; times < 3; ++times) fuse.listenTo(*input);
    for (int times = 1; times <= 2; ++times) {
        input->onModified();
        EXPECT_EQ(fuse.calls, times * SubstanceEntity::MaxCallbacksPerEmission);
    }
}

TEST(Emission, LetsGoOfTheConnectionWhenACallbackThrows) {
    const auto input = freeInput();
    Listener thrower;
    thrower.act = [] { throw std::runtime_error("callback"); };
    thrower.listenTo(*input);
    for (int times = 0; times <= SubstanceEntity::MaxNestedEmissions; ++times)
        EXPECT_THROW(input->onModified(), std::runtime_error);
    // Another thread gets the connection's lock: a forgotten one would hold it for ever.
    kvRTB::SignalItem* const item = kvRTB::SignalWalk(input->getModifiedSignal()).first();
    std::thread([item] { item->lock(), item->unlock(); }).join();
}

TEST(Emission, CallbacksMayDestroyReceiversAndTheEmitter) {
    auto input = freeInput();
    auto own = std::make_unique<Listener>();
    auto later = std::make_unique<Listener>();
    Listener last;
    own->act = [&] { later.reset(), input.reset(), own.reset(); };
    own->listenTo(*input);
    later->listenTo(*input);
    last.listenTo(*input);
    input->setValueI(1, 0);
    EXPECT_FALSE(input || own || later);
    EXPECT_EQ(last.calls, 0); // its connection ended with the emitter
}

TEST(Emission, ResetSurvivesTheLastReference) {
    kv::Reference<Substance> material(new Substance);
    for (const char* const identifier : {"1", "2"})
        material->newInput(*identifier, identifier, TypeInt3)->setDefault({{1, 1, 1, 1}}, false);
    Listener dropper;
    dropper.act = [&] { material.reset(); };
    dropper.listenTo(*material);
    dropper.listenTo(*material->getInput("2"));
    material->reset();
    EXPECT_EQ(dropper.calls, 4); // once through the material, then three slots of the second input
}

TEST(Emission, InputsThatOutliveTheirMaterialForgetIt) {
    kv::Reference<Substance> material(new Substance);
    material->setPackageURL("pkg:/x");
    const kv::Reference<SubstanceInput> replaced(material->newInput(1, "a", TypeInt1));
    const kv::Reference<SubstanceInput> kept(material->newInput(1, "a", TypeInt1));
    // By a caller whose text belongs to what is being replaced.
    const SubstanceInput* const gone = material->newInput(2, "b", TypeInt1);
    material->newInput(2, gone->getIdentifier(), TypeInt1);
    EXPECT_EQ(material->getInputIds().back(), "b");

    replaced->setValueI(1, 0); // replaced is not disconnected
    EXPECT_TRUE(material->isModified());
    EXPECT_STREQ(replaced->getIndexIdentifier(0).asChar(), "$substance$:pkg:/x:a");
    material.reset();
    for (const auto& input : {replaced, kept}) {
        EXPECT_STREQ(input->getIndexIdentifier(0).asChar(), "$substance$::a");
        input->setValueI(7, 0);
    }
}

} // namespace

} // namespace kvSubstance
