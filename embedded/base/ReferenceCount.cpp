#include "platform/base/ReferenceCount.h"

namespace kv {

ReferenceCount::ReferenceCount()
    : count(0) {}

ReferenceCount::~ReferenceCount() = default;

void ReferenceCount::addReference() const {
    count.fetch_add(1, std::memory_order_relaxed);
}

void ReferenceCount::releaseReference() const {
    // What other threads did to the object must be visible to the one that deletes it.
    if (count.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

int ReferenceCount::numReferences() const {
    return count.load(std::memory_order_acquire);
}

} // namespace kv
