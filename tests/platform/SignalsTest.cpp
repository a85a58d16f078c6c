// Signals, by the trace of the callbacks that an emission runs.
#include "platform/base/Signals.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <thread>
#include <vector>

namespace {

using kvRTB::SignalBase;

void emit(SignalBase& signal) {
    kvRTB::SignalWalk walk(signal);
    for (kvRTB::SignalItem* item = walk.first(); item; item = walk.next()) {
        const std::lock_guard<kvRTB::SignalItem> hold(*item);
        if (!item->isBlocked() && !item->isRemoved()) item->function().invoke();
    }
}

struct Listener {
    void heard() {
        trace += name;
        const auto kept = act; // the listener may die in it
        if (kept) kept();
    }
    void listenTo(SignalBase& signal) {
        signal.connect(kvRTB::FunctionVoidMember<Listener>(this, &Listener::heard), tracking);
    }
    std::string& trace;
    char name;
    std::function<void()> act{};
    SignalBase tracking{};
};

class Signals : public testing::Test {
protected:
    Signals() {
        for (const auto* each : {&a, &b, &c}) (*each)->listenTo(signal);
    }
    std::unique_ptr<Listener> listener(char name) {
        return std::unique_ptr<Listener>(new Listener{trace, name});
    }

    std::string trace;
    SignalBase signal;
    std::unique_ptr<Listener> a = listener('a'), b = listener('b'), c = listener('c');
};

TEST_F(Signals, ReceiversDieInNestedWalks) {
    b->listenTo(signal);
    int depth = 0;
    b->act = [&] {
        if (++depth < 5) return emit(signal);
        for (auto* each : {&a, &b, &c}) each->reset();
        a = listener('n');
        for (int times = 0; times < 3; ++times) a->listenTo(signal); // every walk goes on and reaches them
    };
    emit(signal);
    EXPECT_EQ(trace, "ababababab" + std::string(5 * 3, 'n'));
    EXPECT_EQ(signal.numConnections(), 3);
}

TEST_F(Signals, ReceiverWaitsForItsCallbackOnAnotherThread) {
    std::promise<void> started, dying;
    std::atomic<bool> isDead{false};
    bool wasDeadInside = true;
    b->act = [&] {
        started.set_value();
        dying.get_future().wait();
        wasDeadInside = isDead;
    };
    std::thread emitting([&] { emit(signal); });
    started.get_future().wait();
    SignalBase* const tracking = &b->tracking;
    dying.set_value();
    tracking->~SignalBase();
    isDead = true;
    emitting.join();
    EXPECT_FALSE(wasDeadInside);
    new (tracking) SignalBase;
    emit(signal);
    EXPECT_EQ(trace, "abcac");
}

TEST(SignalThreads, ConnectAndEndFreely) {
    SignalBase signal;
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&signal] {
            for (int i = 0; i < 300; ++i) {
                std::string trace;
                Listener listener{trace, 't'};
                SignalBase own;
                listener.listenTo(signal);
                listener.listenTo(own);
            }
        });
    }
    for (int i = 0; i < 300; ++i) emit(signal);
    for (std::thread& each : threads) each.join();
    EXPECT_EQ(signal.numConnections(), 0);
}

} // namespace
