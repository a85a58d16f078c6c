// The engine context: owns texture buffers, the worker threads and the images that are kept between runs.
#pragma once

#include "embedded/engine/ImageCache.h"
#include "embedded/engine/MemoryBudget.h"
#include "embedded/engine/WorkerPool.h"
#include "embedded/nodes/ImageMemory.h"
#include "platform/engine.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <unordered_map>

// Released by its user, the object stays for as long as handles or buffers of it are left.
struct SubstanceContext_ {
public:
    static SubstanceContext* create();
    SubstanceContext_(const SubstanceContext_&) = delete;
    SubstanceContext_& operator=(const SubstanceContext_&) = delete;

    // Each may end the object. False: it was released before, or no such buffer is out.
    bool release();
    bool freeBuffer(void* buffer);
    void detachHandle();

    void* allocateBuffer(std::size_t size);
    // The worker threads, which the handle keeps for its lifetime. Null after release.
    std::shared_ptr<embedded::WorkerPool> attachHandle();

    bool setCallback(SubstanceOutputCompletedCallback function);
    SubstanceOutputCompletedCallback callback() const;

    // Shared by the handles; both outlive the context where handles still use them.
    const std::shared_ptr<embedded::ImageMemory>& memory() const { return memory_; }
    const std::shared_ptr<embedded::ImageCache>& cache() const { return cache_; }
    std::uint64_t budget() const { return budget_; }

private:
    SubstanceContext_() = default;
    ~SubstanceContext_() = default;

    // Takes the lock, and ends the object when nothing of it is left.
    void unlockAndMaybeEnd(std::unique_lock<std::mutex> lock);

    const std::uint64_t budget_ = embedded::memoryBudget();
    const std::shared_ptr<embedded::ImageMemory> memory_ = std::make_shared<embedded::ImageMemory>(budget_);
    const std::shared_ptr<embedded::ImageCache> cache_ = std::make_shared<embedded::ImageCache>();
    mutable std::mutex mutex_;
    bool released_ = false;
    std::size_t handles_ = 0;
    std::unordered_map<void*, std::size_t> buffers_; // with their sizes
    std::shared_ptr<embedded::WorkerPool> pool_;
    SubstanceOutputCompletedCallback callback_ = nullptr;
};
