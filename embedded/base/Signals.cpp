#include "platform/base/Signals.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

// Order of locks: an item's lock first, then the mutex of a list. A list's mutex is held for a few lines
// only: no other lock is taken under it, no callback runs and no item dies under it.

namespace kvRTB {

FunctionVoid::~FunctionVoid() = default;

SignalItem::~SignalItem() = default;

namespace {

// Connections in the order in which they were made. Ended ones stay where they are as long as anybody walks
// the list. They are swept once they are half of it, so that ending n connections takes time in proportion to
// n.
//
// An emission is a walk, most often over one connection, and materials make thousands in a row: what such a
// walk needs is atomic, and the mutex is for longer ones. Whoever ends the last walk and whoever ends a
// connection both look at the other's count after they have changed their own, so that one of them sweeps. In
// the same way a sweep hides the front before it looks for walks.
template <class Connection>
class ConnectionList {
public:
    using Pointer = std::shared_ptr<Connection>;

    void add(Pointer connection) {
        const std::lock_guard<std::mutex> hold(mutex);
        connections.push_back(std::move(connection));
        publish();
    }

    // Of a connection that was added last and has come to nothing. No other thread adds meanwhile.
    void takeBack(const Connection& connection) noexcept {
        const std::lock_guard<std::mutex> hold(mutex);
        const auto isIt = [&connection](const Pointer& each) { return each.get() == &connection; };
        connections.erase(std::remove_if(connections.begin(), connections.end(), isIt), connections.end());
        publish();
    }

    // Null past the end. The list keeps the connection as long as the walk lasts that asks.
    Connection* at(size_t place) const {
        if (place >= size) return nullptr;
        if (Connection* const first = front; first && place == 0) return first;
        const std::lock_guard<std::mutex> hold(mutex);
        return place < connections.size() ? connections[place].get() : nullptr;
    }

    int countLasting() const {
        const std::lock_guard<std::mutex> hold(mutex);
        return static_cast<int>(std::count_if(connections.begin(), connections.end(), lasts));
    }

    void beginWalk() { ++walks; }

    void endWalk() noexcept {
        if (--walks == 0 && ended > 0) sweep();
    }

    void noteEnd() noexcept {
        ++ended;
        if (walks == 0) sweep();
    }

private:
    static bool lasts(const Pointer& connection) { return !connection->isRemoved(); }

    void publish() {
        size = connections.size();
        front = connections.empty() ? nullptr : connections.front().get();
    }

    // Moves ended connections to where they die after the mutex is free again. A walk that begins meanwhile
    // waits for its first connection.
    void sweep() noexcept {
        std::vector<Pointer> swept;
        const std::lock_guard<std::mutex> hold(mutex);
        if (walks > 0 || ended <= 0 || 2 * ended < static_cast<std::ptrdiff_t>(connections.size())) return;
        try {
            swept.reserve(connections.size());
        } catch (const std::bad_alloc&) {
            return; // the next end tries again
        }
        front = nullptr;
        if (walks > 0) return publish();
        size_t kept = 0;
        for (Pointer& connection : connections) {
            if (lasts(connection)) {
                std::swap(connections[kept++], connection);
            } else {
                swept.push_back(std::move(connection));
            }
        }
        connections.resize(kept);
        publish();
        ended -= static_cast<std::ptrdiff_t>(swept.size());
    }

    mutable std::mutex mutex;
    std::vector<Pointer> connections;
    std::atomic<size_t> size{0};
    std::atomic<Connection*> front{nullptr}; // null while a sweep is under way
    std::atomic<size_t> walks{0};
    std::atomic<std::ptrdiff_t> ended{0}; // not swept yet; below zero while one is swept before it is counted
};

} // namespace

struct SignalBase::Body {
    ConnectionList<Connection> emitted;
    ConnectionList<Connection> received;
};

struct SignalBase::Connection : SignalItem {
    Connection(const FunctionVoid& original, std::weak_ptr<Body> fromSignal, std::weak_ptr<Body> toSignal)
        : callback(original.clone())
        , emitter(std::move(fromSignal))
        , receiver(std::move(toSignal)) {}

    // Nested emissions may take the locks of items in any order, rings included. Tried first, a free lock is
    // no part of what checkers of lock order know, who would take a ring for a deadlock even on one thread.
    void lock() override {
        if (!mutex.try_lock()) mutex.lock();
    }
    void unlock() override { mutex.unlock(); }
    bool isBlocked() const override { return blocked; }
    bool isRemoved() const override { return removed; }
    void setBlocked(bool value) override { blocked = value; }
    FunctionVoid& function() override { return *callback; }

    // The lock makes sure that the callback does not run on another thread when this returns.
    void end() {
        {
            const std::lock_guard<Connection> hold(*this);
            if (removed.exchange(true)) return;
        }
        if (const auto from = emitter.lock()) from->emitted.noteEnd();
        if (const auto to = receiver.lock()) to->received.noteEnd();
    }

    static void endAll(ConnectionList<Connection>& list) {
        list.beginWalk();
        for (size_t place = 0; Connection* const connection = list.at(place); ++place) connection->end();
        list.endWalk();
    }

private:
    std::recursive_mutex mutex;
    const std::unique_ptr<FunctionVoid> callback;
    const std::weak_ptr<Body> emitter;
    const std::weak_ptr<Body> receiver;
    std::atomic<bool> blocked{false};
    std::atomic<bool> removed{false};
};

SignalBase::SignalBase() = default;

SignalBase::~SignalBase() {
    if (!hasBody) return;
    Connection::endAll(body->received);
    Connection::endAll(body->emitted);
}

// Most signals of a large material never have a connection, so they do without until the first.
const std::shared_ptr<SignalBase::Body>& SignalBase::ensureBody() {
    static std::mutex making;
    if (hasBody) return body;
    const std::lock_guard<std::mutex> hold(making);
    if (!hasBody) {
        body = std::make_shared<Body>();
        hasBody = true;
    }
    return body;
}

// The receiver learns of the connection first, so that nothing can call a receiver that does not know.
void SignalBase::connect(const FunctionVoid& callback, SignalBase& receiver) {
    const auto connection = std::make_shared<Connection>(callback, ensureBody(), receiver.ensureBody());
    receiver.body->received.add(connection);
    try {
        body->emitted.add(connection);
    } catch (...) {
        receiver.body->received.takeBack(*connection);
        throw;
    }
}

int SignalBase::numConnections() const {
    return hasBody ? body->emitted.countLasting() : 0;
}

void SignalWalk::begin(const SignalBase& signal) {
    body = signal.body;
    body->emitted.beginWalk();
}

void SignalWalk::end() {
    body->emitted.endWalk();
}

SignalItem* SignalWalk::at(size_t item) const {
    return body->emitted.at(item);
}

} // namespace kvRTB
