// The threads of one engine context: row bands on all cores. Threads start with the first work, sleep when
// there is none, and end with the pool.
#pragma once

#include "embedded/engine/Bands.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace embedded {

class WorkerPool {
public:
    // The caller of run works too, so one thread fewer is started.
    explicit WorkerPool(unsigned threads = std::thread::hardware_concurrency());
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    // As a BandRunner. Safe from any thread; work that comes while the pool is busy runs on its caller alone.
    void run(int rows, int rowSamples, const RowFunction& function);

private:
    struct Work;

    void startThreads();
    void workUntilClosed();

    const unsigned helpers_;
    std::mutex busy_;                  // held by the caller whose work the threads share
    std::vector<std::thread> threads_; // guarded by busy_
    std::mutex mutex_;
    std::condition_variable changed_;
    std::shared_ptr<Work> work_; // this and below guarded by mutex_
    bool closed_ = false;
};

} // namespace embedded
