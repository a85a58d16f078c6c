#include "embedded/engine/WorkerPool.h"

#include <algorithm>
#include <exception>
#include <system_error>

namespace embedded {

namespace {

constexpr unsigned mostHelpers = 63;
constexpr int samplesInBand = 1 << 16;

} // namespace

// One call of run. The function lives in the caller's frame; no band starts after the caller has returned,
// since it waits until none is left to take and none is in progress.
struct WorkerPool::Work {
    Work(int rowCount, int rowsOfBand, const RowFunction& rowFunction)
        : rows(rowCount)
        , bandRows(rowsOfBand)
        , function(rowFunction) {}

    // Takes and computes bands until none is left.
    void compute() {
        std::unique_lock<std::mutex> lock(mutex);
        while (nextRow < rows) {
            const int begin = nextRow;
            nextRow = rows - begin > bandRows ? begin + bandRows : rows;
            const int end = nextRow;
            ++inProgress;
            lock.unlock();
            std::exception_ptr failure;
            try {
                function(begin, end);
            } catch (...) {
                failure = std::current_exception();
            }
            lock.lock();
            --inProgress;
            if (failure) {
                firstFailure = firstFailure ? firstFailure : failure;
                nextRow = rows;
            }
        }
        if (inProgress == 0) finished.notify_all();
    }

    void waitUntilFinished() {
        std::unique_lock<std::mutex> lock(mutex);
        finished.wait(lock, [this] { return nextRow == rows && inProgress == 0; });
        if (firstFailure) std::rethrow_exception(firstFailure);
    }

    const int rows;
    const int bandRows;
    const RowFunction& function;
    std::mutex mutex;
    std::condition_variable finished;
    int nextRow = 0;
    int inProgress = 0;
    std::exception_ptr firstFailure;
};

WorkerPool::WorkerPool(unsigned threads)
    : helpers_(std::min(threads > 0 ? threads - 1 : 0, mostHelpers)) {}

WorkerPool::~WorkerPool() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        closed_ = true;
    }
    changed_.notify_all();
    for (std::thread& thread : threads_) thread.join();
}

void WorkerPool::run(int rows, int rowSamples, const RowFunction& function) {
    const int bandRows = std::max(1, samplesInBand / std::max(1, rowSamples));
    std::unique_lock<std::mutex> owner(busy_, std::try_to_lock);
    if (!owner || helpers_ == 0 || rows <= bandRows) return function(0, rows);
    startThreads();
    const auto work = std::make_shared<Work>(rows, bandRows, function);
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        work_ = work;
    }
    changed_.notify_all();
    work->compute();
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        work_.reset();
    }
    work->waitUntilFinished();
}

// Where the system gives no more threads, those there are do the work.
void WorkerPool::startThreads() {
    try {
        while (threads_.size() < helpers_) threads_.emplace_back([this] { workUntilClosed(); });
    } catch (const std::system_error&) {
    }
}

void WorkerPool::workUntilClosed() {
    std::shared_ptr<Work> done;
    for (;;) {
        std::shared_ptr<Work> work;
        {
            std::unique_lock<std::mutex> lock(mutex_);
            changed_.wait(lock, [&] { return closed_ || (work_ && work_ != done); });
            if (closed_) return;
            work = work_;
        }
        work->compute();
        done = std::move(work);
    }
}

} // namespace embedded
