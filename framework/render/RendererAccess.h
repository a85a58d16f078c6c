// The way to the renderer: a lock on the renderer mutex for as long as the access stands.
#pragma once

#include <boost/core/noncopyable.hpp>
#include <boost/thread/lock_types.hpp>
#include <boost/thread/mutex.hpp>

namespace SubstanceAir {

class RendererImpl;

// The first access of a process creates the renderer. When the process is exiting and the renderer is closed for
// good, an access is empty and locks nothing.
class RendererAccess : private boost::noncopyable {
public:
    RendererAccess();
    ~RendererAccess();

    explicit operator bool() const { return renderer != nullptr; }
    RendererImpl* operator->() const { return renderer; }

private:
    boost::unique_lock<boost::mutex> lock;
    RendererImpl* renderer = nullptr;
};

} // namespace SubstanceAir
