#include "platform/image/TempReference.h"

namespace kv {

TempReferenceCount::TempReferenceCount()
    : tempCount(0) {}

TempReferenceCount::~TempReferenceCount() = default;

void TempReferenceCount::addTempReference() const {
    tempCount.fetch_add(1, std::memory_order_relaxed);
}

void TempReferenceCount::releaseTempReference() const {
    // What other threads did to the object must be visible to the one that deletes it.
    if (tempCount.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

int TempReferenceCount::numTempReferences() const {
    return tempCount.load(std::memory_order_acquire);
}

} // namespace kv
