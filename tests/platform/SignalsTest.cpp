// Signals, by the trace of the callbacks that an emission runs.
#include "platform/base/Signals.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using kvRTB::SignalBase;

void emit(SignalBase& signal) {
    kvRTB::SignalWalk walk(signal);
    for (kvRTB::SignalItem* item = walk.first(); item;) {
        item->lock();
        if (!item->isBlocked() && !item->isRemoved()) item->function().invoke();
        kvRTB::SignalItem* const next = walk.next();
        item->unlock();
        item = next;
    }
}

struct Listener {
    explicit Listener(std::function<void()> called)
        : act(std::move(called)) {}
    void heard() {
        const auto kept = act; // the listener may die in it
        kept();
    }
    void listenTo(SignalBase& signal) {
        signal.connect(kvRTB::FunctionVoidMember<Listener>(this, &Listener::heard), tracking);
    }
    std::function<void()> act;
    SignalBase tracking;
};

class Signals : public testing::Test {
protected:
    Signals() {
        for (const auto* each : {&a, &b, &c}) (*each)->listenTo(*signal);
    }
    std::unique_ptr<Listener> tracing(char name, std::function<void()> action = [] {}) {
        return std::make_unique<Listener>([this, name, action] {
            trace += name;
            action();
        });
    }
    std::string traceOf(SignalBase& emitter) {
        trace.clear();
        emit(emitter);
        return trace;
    }

    std::string trace;
    std::unique_ptr<SignalBase> signal = std::make_unique<SignalBase>();
    std::function<void()> inB = [] {};
    std::unique_ptr<Listener> a = tracing('a'), b = tracing('b', [this] { inB(); }), c = tracing('c');
};

TEST_F(Signals, KeepOrderAndSkipBlockedItems) {
    a->listenTo(*signal);
    EXPECT_EQ(traceOf(*signal), "abca");
    kvRTB::SignalItem* const first = kvRTB::SignalWalk(*signal).first();
    EXPECT_TRUE(first->function().isBoundTo(a.get()) && !first->function().isBoundTo(b.get()));
    first->setBlocked(true);
    EXPECT_EQ(traceOf(*signal), "bca");
    EXPECT_EQ(signal->numConnections(), 4);
}

TEST_F(Signals, ReceiversDieInCallbacks) {
    b->listenTo(*signal);
    inB = [this] {
        c.reset(); // of a later item
        b.reset(); // its own, twice connected
    };
    EXPECT_EQ(traceOf(*signal), "ab");
    EXPECT_EQ(traceOf(*signal), "a");
    EXPECT_EQ(signal->numConnections(), 1);
}

TEST_F(Signals, ReceiversDieInNestedWalks) {
    inB = [this, depth = 0]() mutable {
        if (++depth < 5) return emit(*signal);
        for (auto* each : {&a, &b, &c}) each->reset();
        a = tracing('n');
        for (int times = 0; times < 3; ++times) a->listenTo(*signal); // every walk goes on and reaches them
    };
    EXPECT_EQ(traceOf(*signal), "ababababab" + std::string(5 * 3, 'n'));
    EXPECT_EQ(traceOf(*signal), "nnn");
}

TEST_F(Signals, EmitterDiesInNestedWalks) {
    inB = [this, isNested = false]() mutable {
        if (!std::exchange(isNested, true)) return emit(*signal);
        signal.reset();
    };
    EXPECT_EQ(traceOf(*signal), "abab");
    a.reset(); // receivers know that the emitter is gone
    SignalBase other;
    c->listenTo(other);
    EXPECT_EQ(traceOf(other), "c");
}

TEST_F(Signals, ReceiverWaitsForItsCallbackOnAnotherThread) {
    std::promise<void> started, dying;
    std::atomic<bool> isDead{false};
    bool wasDeadInside = true;
    inB = [&] {
        started.set_value();
        dying.get_future().wait();
        wasDeadInside = isDead;
    };
    std::thread emitting([&] { emit(*signal); });
    started.get_future().wait();
    SignalBase* const tracking = &b->tracking;
    dying.set_value();
    tracking->~SignalBase();
    isDead = true;
    emitting.join();
    EXPECT_FALSE(wasDeadInside);
    new (tracking) SignalBase;
    EXPECT_EQ(traceOf(*signal), "ac");
}

TEST(SignalThreads, ConnectAndEndFreely) {
    SignalBase signal;
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&signal] {
            for (int i = 0; i < 300; ++i) {
                Listener listener([] {});
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
