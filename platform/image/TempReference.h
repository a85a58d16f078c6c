// The image library's own reference counting: temporary references keep an image alive while they stand.
#pragma once

#include "platform/image/Export.h"

#include <atomic>
#include <utility>

namespace kv {

// Base of counted images, which live on the heap. The count starts at 0. Counting is safe from any thread.
class KVIMAGE_API TempReferenceCount {
public:
    TempReferenceCount(const TempReferenceCount&) = delete;
    TempReferenceCount& operator=(const TempReferenceCount&) = delete;
    virtual ~TempReferenceCount();

    void addTempReference() const;
    void releaseTempReference() const; // deletes the object when the count falls to 0
    int numTempReferences() const;

protected:
    TempReferenceCount();

private:
    mutable std::atomic<int> tempCount;
};

// A holder of one temporary reference, or of none.
template <class T>
class TempReference {
public:
    TempReference() = default;
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
    ~TempReference() { reset(); }

    TempReference& operator=(TempReference other) noexcept {
        std::swap(held, other.held);
        return *this;
    }

    void reset() {
        if (T* const object = std::exchange(held, nullptr)) object->releaseTempReference();
    }

    T* get() const { return held; }
    T* operator->() const { return held; }
    T& operator*() const { return *held; }
    explicit operator bool() const { return held != nullptr; }

private:
    T* held = nullptr;
};

} // namespace kv
