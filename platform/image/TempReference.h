/// @file
/// The image library's own reference counting: temporary references keep an image alive while they stand.
#pragma once

#include "platform/image/Export.h"

#include <atomic>
#include <utility>

namespace kv {

/// Base of counted images, which live on the heap. The count starts at 0. Counting is safe from any thread.
class KVIMAGE_API TempReferenceCount {
public:
    TempReferenceCount(const TempReferenceCount&) = delete;
    TempReferenceCount& operator=(const TempReferenceCount&) = delete;
    virtual ~TempReferenceCount();

    /// Takes a reference, which is given back by one releaseTempReference. TempReference does both.
    void addTempReference() const;
    void releaseTempReference() const; ///< Deletes the object, on this thread, when the count falls to 0.
    int numTempReferences() const;     ///< How many are held now; another thread may change it at once.

protected:
    TempReferenceCount();

private:
    mutable std::atomic<int> tempCount;
};

/// A holder of one temporary reference, or of none. Different threads may hold references to one object; a
/// single TempReference belongs to one thread at a time.
template <class T>
class TempReference {
public:
    TempReference() = default;

    /// @{
    /// Takes a reference of its own to what is given; from null comes an empty reference. A move takes the
    /// other's reference over and leaves it empty.
    TempReference(T* object)
        : held(object) { // not explicit: a plain pointer passes as a reference
        if (held) held->addTempReference();
    }
    TempReference(const TempReference& other)
        : TempReference(other.held) {}
    TempReference(TempReference&& other) noexcept
        : held(std::exchange(other.held, nullptr)) {}
    template <class U>
    TempReference(const TempReference<U>& other)
        : TempReference(static_cast<T*>(other.get())) {}
    /// @}
    ~TempReference() { reset(); }

    /// Holds what the other holds, and lets go of what was held before.
    TempReference& operator=(TempReference other) noexcept {
        std::swap(held, other.held);
        return *this;
    }

    /// Lets go; the reference is empty before the object can die.
    void reset() {
        if (T* const object = std::exchange(held, nullptr)) object->releaseTempReference();
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

} // namespace kv
