/// @file
/// Signals: lists of callbacks that an emitter walks, and that vanish with their receivers.
#pragma once

#include "platform/base/Export.h"

#include <atomic>
#include <memory>

/// The host's base library: callbacks and signals.
namespace kvRTB {

/// A callback without arguments.
class KVBASE_API FunctionVoid {
public:
    virtual ~FunctionVoid();
    virtual FunctionVoid* clone() const = 0;              ///< A copy, owned by the caller.
    virtual bool isBoundTo(const void* object) const = 0; ///< Whether a call would reach that object.
    virtual void invoke() = 0;                            ///< Calls. The emitter's thread does.
};

/// A void member function without arguments, bound to an object that it does not own. The object outlives
/// every connection of the callback: it names a signal of its own as the receiver (SignalBase::connect).
template <class T>
class FunctionVoidMember : public FunctionVoid {
public:
    using Member = void (T::*)(); ///< What it can call.

    /// Neither is null.
    FunctionVoidMember(T* boundObject, Member boundMember)
        : object(boundObject)
        , member(boundMember) {}
    FunctionVoid* clone() const override { return new FunctionVoidMember(*this); }
    bool isBoundTo(const void* other) const override { return object == other; }
    void invoke() override { (object->*member)(); }

private:
    T* object;
    Member member;
};

/// One connection. Its lock is recursive: whoever edits in a callback may come round to the same connection.
class KVBASE_API SignalItem {
public:
    virtual ~SignalItem();

    /// @{
    /// An emitter holds the lock while it looks at the marks and calls; the end of a connection waits for it,
    /// so that no callback runs on another thread once its receiver is gone.
    virtual void lock() = 0;
    virtual void unlock() = 0;
    /// @}
    virtual bool isBlocked() const = 0;        ///< Switched off for a while.
    virtual bool isRemoved() const = 0;        ///< Disconnected; the item only waits to be swept up.
    virtual void setBlocked(bool blocked) = 0; ///< Switches the connection off or on. From any thread.
    virtual FunctionVoid& function() = 0;      ///< The callback, which lives as long as the item.
};

/// A list of connections, and at the same time the tracking object of a receiver: connections to callbacks of
/// an object name one of the object's own signals as their receiver and end when that signal dies.
///
/// Connecting, walking and ending may happen inside a callback of the same signal. A connection that is made
/// during a walk is reached by it, unless the walk began on a signal that never had one: that walk is empty,
/// and stays so. Different threads may use different signals, receivers included.
class KVBASE_API SignalBase {
public:
    SignalBase();
    SignalBase(const SignalBase&) = delete;
    SignalBase& operator=(const SignalBase&) = delete;

    /// Ends every connection of this signal, and every one that it receives. A callback of one that runs on
    /// another thread is waited for.
    ~SignalBase();

    /// Appends a connection, which lasts until this signal or the receiver dies. The callback is copied.
    /// Connecting twice calls twice. Throws std::bad_alloc.
    void connect(const FunctionVoid& callback, SignalBase& receiver);

    int numConnections() const; ///< Those that have not ended, blocked ones included.

private:
    struct Connection;
    struct Body;
    friend class SignalWalk;
    const std::shared_ptr<Body>& ensureBody();

    std::shared_ptr<Body> body;       // made with the first connection, then the same for good
    std::atomic<bool> hasBody{false}; // from before the first connect returns: only then is a walk begun
};

/// A walk over a signal's connections in their order. It keeps the list and its items alive, whatever the
/// callbacks destroy, the signal included.
class KVBASE_API SignalWalk {
public:
    /// The signal has to live only until this returns.
    explicit SignalWalk(SignalBase& signal) {
        if (signal.hasBody) begin(signal);
    }
    SignalWalk(const SignalWalk&) = delete;
    SignalWalk& operator=(const SignalWalk&) = delete;
    ~SignalWalk() {
        if (body) end();
    }

    /// Null when there is none. Borrowed from the walk, as are those that follow.
    SignalItem* first() { return body ? at(place = 0) : nullptr; }
    /// The item after the one returned last; null behind the last one.
    SignalItem* next() { return body ? at(++place) : nullptr; }

private:
    void begin(const SignalBase& signal); // sets the body, and keeps it and its items
    void end();
    SignalItem* at(size_t item) const; // null behind the last one

    std::shared_ptr<SignalBase::Body> body;
    size_t place = 0;
};

} // namespace kvRTB
