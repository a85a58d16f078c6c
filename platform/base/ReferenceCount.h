/// @file
/// Intrusive reference counting: the count lives in the object, and the last holder to let go deletes it.
#pragma once

#include "platform/base/Export.h"

#include <atomic>
#include <utility>

/// The host's base library: references and containers. The image library adds its own references.
namespace kv {

/// Base of counted objects, which live on the heap. The count starts at 0: an object that nobody ever held is
/// deleted by nobody. Counting is safe from any thread; the objects themselves are not.
class KVBASE_API ReferenceCount {
public:
    ReferenceCount(const ReferenceCount&) = delete;
    ReferenceCount& operator=(const ReferenceCount&) = delete;
    virtual ~ReferenceCount();

    /// Takes a reference, which is given back by one releaseReference. Reference does both.
    void addReference() const;
    void releaseReference() const; ///< Deletes the object, on this thread, when the count falls to 0.
    int numReferences() const;     ///< How many are held now; another thread may change it at once.

protected:
    ReferenceCount();

private:
    mutable std::atomic<int> count;
};

/// A holder of one reference, or of none. Different threads may hold references to one object; a single
/// Reference belongs to one thread at a time.
template <class T>
class Reference {
public:
    Reference() = default;

    /// @{
    /// Takes a reference of its own to what is given; from null comes an empty reference. A move takes the
    /// other's reference over and leaves it empty.
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
    /// @}
    ~Reference() { reset(); }

    /// Holds what the other holds. What was held before is let go of last, when this reference is complete.
    Reference& operator=(Reference other) noexcept {
        std::swap(held, other.held);
        return *this;
    }

    /// The reference lets go of its object before the object can die, so that what its end sets off finds an
    /// empty reference here.
    void reset() {
        if (T* const object = std::exchange(held, nullptr)) object->releaseReference();
    }

    /// @{
    /// The object, borrowed: valid as long as somebody holds it. Null from get, and not to be followed, when
    /// the reference is empty.
    T* get() const { return held; }
    T* operator->() const { return held; }
    T& operator*() const { return *held; }
    /// @}
    explicit operator bool() const { return held != nullptr; } ///< Whether anything is held.

private:
    T* held = nullptr;
};

/// @{
/// Whether both hold the same object, or nothing.
template <class T, class U>
bool operator==(const Reference<T>& a, const Reference<U>& b) {
    return a.get() == b.get();
}
template <class T, class U>
bool operator!=(const Reference<T>& a, const Reference<U>& b) {
    return a.get() != b.get();
}
/// @}

} // namespace kv
