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

class Signals : public testing::Test {
protected:
    struct Listener {
        void heard() {
            trace += name;
            const auto kept = action; // the listener may die in it
            if (kept) kept();
        }
        std::string& trace;
        std::string name;
        std::function<void()> action;
        SignalBase tracking;
    };

    std::unique_ptr<Listener> listener(const char* name, std::function<void()> action = {}) {
        return std::unique_ptr<Listener>(new Listener{trace, name, std::move(action), {}});
    }
    static void connect(SignalBase& from, Listener& to) {
        from.connect(kvRTB::FunctionVoidMember<Listener>(&to, &Listener::heard), to.tracking);
    }
    std::string traceOf(SignalBase& emitter) {
        trace.clear();
        emit(emitter);
        return trace;
    }

    std::string trace;
    std::unique_ptr<SignalBase> signal = std::make_unique<SignalBase>();
    std::unique_ptr<Listener> a = listener("a"), b = listener("b"), c = listener("c");

    void connectAll() {
        for (const auto* each : {&a, &b, &c}) connect(*signal, **each);
    }
};

TEST_F(Signals, KeepOrderAndRepeatedConnections) {
    connectAll();
    connect(*signal, *a);
    EXPECT_EQ(traceOf(*signal), "abca");
    a.reset();
    EXPECT_EQ(traceOf(*signal), "bc");
    EXPECT_EQ(signal->numConnections(), 2);
}

TEST_F(Signals, SkipBlockedItems) {
    connectAll();
    {
        kvRTB::SignalWalk walk(*signal);
        EXPECT_TRUE(walk.first()->function().isBoundTo(a.get()));
        EXPECT_FALSE(walk.next()->function().isBoundTo(a.get()));
        walk.first()->setBlocked(true);
    }
    EXPECT_EQ(traceOf(*signal), "bc");
    EXPECT_EQ(signal->numConnections(), 3);
}

TEST_F(Signals, ReachWhatIsConnectedOnTheWay) {
    connectAll();
    c->action = [this] {
        c->action = nullptr;
        for (int i = 0; i < 100; ++i) connect(*signal, *b);
    };
    EXPECT_EQ(traceOf(*signal), "abc" + std::string(100, 'b'));
}

TEST_F(Signals, ReceiversDieInCallbacks) {
    connectAll();
    connect(*signal, *a);
    a->action = [this] {
        c.reset(); // of a later item
        a.reset(); // its own, twice connected
    };
    EXPECT_EQ(traceOf(*signal), "ab");
    EXPECT_EQ(traceOf(*signal), "b");
    EXPECT_EQ(signal->numConnections(), 1);
}

TEST_F(Signals, ReceiversDieInNestedWalks) {
    connectAll();
    int depth = 0;
    b->action = [this, &depth] {
        if (++depth < 5) return emit(*signal);
        for (auto* each : {&a, &b, &c}) each->reset();
        connect(*signal, *(a = listener("n"))); // every walk goes on and reaches it
    };
    EXPECT_EQ(traceOf(*signal), "abababababnnnnn");
    EXPECT_EQ(traceOf(*signal), "n");
}

TEST_F(Signals, EmitterDiesInNestedWalks) {
    connectAll();
    bool isNested = false;
    b->action = [this, &isNested] {
        if (!std::exchange(isNested, true)) return emit(*signal);
        signal.reset();
    };
    EXPECT_EQ(traceOf(*signal), "abab");
    a.reset(); // receivers know that the emitter is gone
    SignalBase other;
    connect(other, *b);
    connect(other, *c);
    b->action = nullptr;
    EXPECT_EQ(traceOf(other), "bc");
}

// Two emitters that set each other off, from either end: the locks are recursive and keep no order.
TEST_F(Signals, RunInRings) {
    SignalBase other;
    int depth = 0;
    a->action = [&] {
        if (++depth % 6) emit(other);
    };
    b->action = [&] {
        if (++depth % 6) emit(*signal);
    };
    connect(*signal, *a);
    connect(other, *b);
    EXPECT_EQ(traceOf(*signal), "ababab");
    EXPECT_EQ(traceOf(other), "bababa");
}

TEST_F(Signals, ReceiverWaitsForItsCallbackOnAnotherThread) {
    connectAll();
    std::promise<void> started;
    std::promise<void> dying;
    std::atomic<bool> isDead{false};
    bool wasDeadInside = true;
    b->action = [&] {
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

TEST_F(Signals, ThreadsConnectAndEndFreely) {
    struct Counter {
        void heard() { ++count; }
        std::atomic<int> count{0};
        SignalBase tracking;
    };
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([this] {
            for (int i = 0; i < 300; ++i) {
                Counter counter;
                SignalBase own;
                const kvRTB::FunctionVoidMember<Counter> callback(&counter, &Counter::heard);
                signal->connect(callback, counter.tracking);
                own.connect(callback, counter.tracking);
                emit(own);
                EXPECT_GE(counter.count, 1);
            }
        });
    }
    for (int i = 0; i < 300; ++i) emit(*signal);
    for (std::thread& each : threads) each.join();
    EXPECT_EQ(signal->numConnections(), 0);
}

} // namespace
