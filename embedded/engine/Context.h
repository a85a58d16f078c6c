// The engine context: owns texture buffers and the worker threads.
#pragma once

#include "embedded/engine/WorkerPool.h"
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

private:
    SubstanceContext_() = default;
    ~SubstanceContext_() = default;

    // Takes the lock, and ends the object when nothing of it is left.
    void unlockAndMaybeEnd(std::unique_lock<std::mutex> lock);

    mutable std::mutex mutex_;
    bool released_ = false;
    std::size_t handles_ = 0;
    std::unordered_map<void*, std::unique_ptr<unsigned char[]>> buffers_;
    std::shared_ptr<embedded::WorkerPool> pool_;
    SubstanceOutputCompletedCallback callback_ = nullptr;
};
