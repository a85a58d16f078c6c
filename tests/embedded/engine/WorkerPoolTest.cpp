#include "embedded/engine/WorkerPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace embedded;

namespace {

constexpr int rowSamples = 1 << 15; // two rows make a band

TEST(WorkerPool, computesEachRowOnceForSeveralCallersAtOnce) {
    WorkerPool pool(3);
    std::vector<std::thread> callers;
    for (int caller = 0; caller < 4; ++caller) {
        callers.emplace_back([&pool] {
            for (const int rows : {0, 1, 2, 101}) {
                std::vector<std::atomic<int>> counts(static_cast<std::size_t>(rows));
                pool.run(rows, rowSamples, [&](int begin, int end) {
                    for (int row = begin; row < end; ++row) ++counts[static_cast<std::size_t>(row)];
                });
                for (const auto& count : counts) EXPECT_EQ(count, 1);
            }
        });
    }
    for (std::thread& caller : callers) caller.join();
}

TEST(WorkerPool, anExceptionComesOutAfterAllBandsAndThePoolGoesOn) {
    WorkerPool pool(3);
    std::atomic<int> inProgress{0};
    const auto failing = [&](int begin, int) {
        ++inProgress;
        std::this_thread::yield();
        --inProgress;
        if (begin == 20) throw std::runtime_error("row 20");
    };
    for (int i = 0; i < 50; ++i) {
        EXPECT_THROW(pool.run(40, rowSamples, failing), std::runtime_error);
        EXPECT_EQ(inProgress, 0);
    }
    std::atomic<int> sum{0};
    pool.run(100, rowSamples, [&](int begin, int end) { sum += end - begin; });
    EXPECT_EQ(sum, 100);
}

} // namespace
