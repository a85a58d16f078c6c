// The emission of the modified signal: order, rings and bombs, and what callbacks may destroy.
#include "tests/material/ModelText.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>

namespace kvSubstance {

namespace {

struct Action {
    kvRTB::SignalBase tracking;
    std::function<void()> act;

    void called() { std::function<void()>(act)(); } // a copy, which outlives this object
};

void connect(SubstanceEntity& entity, Action& action) {
    entity.getModifiedSignal().connect(kvRTB::FunctionVoidMember<Action>(&action, &Action::called),
                                       action.tracking);
}

void mark(SubstanceEntity& source, SubstanceEntity& target) {
    const kvRTB::FunctionVoidMember<SubstanceEntity> callback(&target, &SubstanceEntity::onModified);
    source.getModifiedSignal().connect(callback, target.getReceiver());
}

kv::Reference<SubstanceInput> freeInput() {
    return new SubstanceInput(nullptr, 1, "free", TypeInt1);
}

TEST(Emission, ReachesWhatIsConnectedMeanwhileAndSkipsTheBlocked) {
    const auto input = freeInput();
    Listener blocked, late;
    Action adder;
    adder.act = [&] { late.listenTo(*input); };
    blocked.listenTo(*input);
    connect(*input, adder);
    kvRTB::SignalWalk(input->getModifiedSignal()).first()->setBlocked(true);
    input->onModified();
    EXPECT_EQ(blocked.calls, 0);
    EXPECT_EQ(late.calls, 1);
}

TEST(Emission, RingsEndAtTheNestingLimit) {
    const auto a = freeInput();
    const auto b = freeInput();
    mark(*a, *b);
    mark(*b, *a);
    Listener onA, onB;
    onA.listenTo(*a);
    onB.listenTo(*b);
    a->setValueI(1, 0);
    EXPECT_TRUE(a->isModified() && b->isModified());
    EXPECT_EQ(onA.calls + onB.calls, SubstanceEntity::MaxNestedEmissions);
    a->setValueI(2, 0); // the next one has all its depth again
    EXPECT_EQ(onA.calls + onB.calls, 2 * SubstanceEntity::MaxNestedEmissions);
}

TEST(Emission, BombsEndAtTheCallbackLimit) {
    const auto input = freeInput();
    Action fuse;
    int calls = 0;
    fuse.act = [&] {
        ++calls;
        input->onModified();
    };
    for (int times = 0; times < 3; ++times) connect(*input, fuse);
    input->onModified();
    EXPECT_EQ(calls, SubstanceEntity::MaxCallbacksPerEmission);
    calls = 0;
    input->onModified();
    EXPECT_EQ(calls, SubstanceEntity::MaxCallbacksPerEmission);
}

TEST(Emission, LetsGoOfTheConnectionWhenACallbackThrows) {
    const auto input = freeInput();
    Action thrower;
    thrower.act = [] { throw std::runtime_error("callback"); };
    connect(*input, thrower);
    for (int times = 0; times <= SubstanceEntity::MaxNestedEmissions; ++times)
        EXPECT_THROW(input->onModified(), std::runtime_error);
    // Another thread gets the connection's lock: a forgotten one would hold it for ever.
    kvRTB::SignalItem* const item = kvRTB::SignalWalk(input->getModifiedSignal()).first();
    std::thread([item] { item->lock(), item->unlock(); }).join();
}

TEST(Emission, CallbacksMayDestroyReceiversAndTheEmitter) {
    auto input = freeInput();
    auto own = std::make_unique<Action>();
    auto later = std::make_unique<Listener>();
    Listener last;
    own->act = [&] {
        later.reset();
        input.reset();
        own.reset();
    };
    connect(*input, *own);
    later->listenTo(*input);
    last.listenTo(*input);
    input->setValueI(1, 0);
    EXPECT_FALSE(input || own || later);
    EXPECT_EQ(last.calls, 0); // its connection ended with the emitter
}

TEST(Emission, ResetSurvivesTheLastReference) {
    kv::Reference<Substance> material(new Substance);
    for (unsigned int uid = 1; uid <= 2; ++uid) {
        SubstanceInput* const input = material->newInput(uid, std::to_string(uid).c_str(), TypeInt3);
        SubstanceInput::IntOrFloat ones{{1, 1, 1, 1}};
        input->setDefault(ones, false);
    }
    Action dropper;
    int calls = 0;
    dropper.act = [&] {
        ++calls;
        material.reset();
    };
    connect(*material, dropper);
    connect(*material->getInput("2"), dropper);
    material->reset();
    EXPECT_EQ(calls, 4); // once through the material, then three slots of the second input
}

} // namespace

} // namespace kvSubstance
