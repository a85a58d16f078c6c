// Intrusive reference counting: the count lives in the object, and the last holder to let go deletes it.
#pragma once

#include "platform/base/Export.h"

#include <atomic>
#include <utility>

namespace kv {

// Base of counted objects, which live on the heap. The count starts at 0: an object that nobody ever held is
// deleted by nobody. Counting is safe from any thread; the objects themselves are not.
class KVBASE_API ReferenceCount {
public:
    ReferenceCount(const ReferenceCount&) = delete;
    ReferenceCount& operator=(const ReferenceCount&) = delete;
    virtual ~ReferenceCount();

    void addReference() const;
    void releaseReference() const; // deletes the object when the count falls to 0
    int numReferences() const;

protected:
    ReferenceCount();

private:
    mutable std::atomic<int> count;
};

// A holder of one reference, or of none.
template <class T>
class Reference {
public:
    Reference() = default;
    Reference(T* object)
        : held(object) { // not explicit: a plain pointer passes as a reference
        if (held) held->addReference();
    }
    Reference(const Reference& other)
        : Reference(other.held) {}
    Reference(Reference&& other) noexcept
        : held(std::exchange(other.held, nullptr)) {}
    template <class U>
    Reference(const Reference<U>& other)
        : Reference(static_cast<T*>(other.get())) {}
    ~Reference() { reset(); }

    Reference& operator=(Reference other) noexcept {
        std::swap(held, other.held);
        return *this;
    }

    // The reference lets go of its object before the object can die, so that what its end sets off finds an
    // empty reference here.
    void reset() {
        if (T* const object = std::exchange(held, nullptr)) object->releaseReference();
    }

    T* get() const { return held; }
    T* operator->() const { return held; }
    T& operator*() const { return *held; }
    explicit operator bool() const { return held != nullptr; }

private:
    T* held = nullptr;
};

template <class T, class U>
bool operator==(const Reference<T>& a, const Reference<U>& b) {
    return a.get() == b.get();
}
template <class T, class U>
bool operator!=(const Reference<T>& a, const Reference<U>& b) {
    return a.get() != b.get();
}

} // namespace kv
