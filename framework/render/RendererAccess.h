// The ways to the renderer: a lock on the renderer mutex for as long as the access stands.
#pragma once

#include <boost/core/noncopyable.hpp>
#include <boost/thread/lock_types.hpp>
#include <boost/thread/mutex.hpp>

namespace SubstanceAir {

class RendererImpl;

// The first access of a process creates the renderer. When the process is exiting and the renderer is gone
// for good, an access is empty. Under an access no graph instance may die, and no other access may be opened:
// the mutex is not recursive.
class RendererAccess : private boost::noncopyable {
public:
    RendererAccess();

    explicit operator bool() const { return renderer != nullptr; }
    RendererImpl* operator->() const { return renderer; }

private:
    boost::unique_lock<boost::mutex> lock;
    RendererImpl* renderer = nullptr;
};

// Waits for a run in progress, and keeps the next one from beginning. Creates no renderer: without one it is
// empty, as it is when the process is exiting.
class IdleRendererAccess : private boost::noncopyable {
public:
    IdleRendererAccess();

    explicit operator bool() const { return renderer != nullptr; }
    RendererImpl* operator->() const { return renderer; }

private:
    boost::unique_lock<boost::mutex> runLock;
    boost::unique_lock<boost::mutex> lock;
    RendererImpl* renderer = nullptr;
};

} // namespace SubstanceAir
