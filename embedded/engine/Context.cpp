#include "embedded/engine/Context.h"

#include <utility>

SubstanceContext* SubstanceContext_::create() {
    auto pool = std::make_shared<embedded::WorkerPool>();
    auto* context = new SubstanceContext_;
    context->pool_ = std::move(pool);
    return context;
}

bool SubstanceContext_::release() {
    std::shared_ptr<embedded::WorkerPool> pool; // its threads end outside the lock
    std::unique_lock<std::mutex> lock(mutex_);
    if (released_) return false;
    released_ = true;
    callback_ = nullptr;
    pool.swap(pool_);
    unlockAndMaybeEnd(std::move(lock));
    return true;
}

bool SubstanceContext_::freeBuffer(void* buffer) {
    std::unique_lock<std::mutex> lock(mutex_);
    const auto found = buffers_.find(buffer);
    if (found == buffers_.end()) return false;
    memory_->giveBack(buffer, found->second);
    buffers_.erase(found);
    unlockAndMaybeEnd(std::move(lock));
    return true;
}

void SubstanceContext_::detachHandle() {
    std::unique_lock<std::mutex> lock(mutex_);
    --handles_;
    unlockAndMaybeEnd(std::move(lock));
}

void* SubstanceContext_::allocateBuffer(std::size_t size) {
    void* const buffer = memory_->take(size);
    try {
        const std::lock_guard<std::mutex> lock(mutex_);
        buffers_.emplace(buffer, size);
    } catch (...) {
        memory_->giveBack(buffer, size);
        throw;
    }
    return buffer;
}

std::shared_ptr<embedded::WorkerPool> SubstanceContext_::attachHandle() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (pool_) ++handles_;
    return pool_;
}

bool SubstanceContext_::setCallback(SubstanceOutputCompletedCallback function) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (released_) return false;
    callback_ = function;
    return true;
}

SubstanceOutputCompletedCallback SubstanceContext_::callback() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return callback_;
}

void SubstanceContext_::unlockAndMaybeEnd(std::unique_lock<std::mutex> lock) {
    const bool unused = released_ && handles_ == 0 && buffers_.empty();
    lock.unlock();
    if (unused) delete this;
}
