#include "embedded/engine/WorkerPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <numeric>
#include <stdexcept>

using namespace embedded;

namespace {

constexpr int wideRow = 1 << 15; // samples; two such rows make a band

TEST(WorkerPool, computesEveryRowOnceFromAnyNumberOfCallers) {
    for (const unsigned threads : {0u, 1u, 2u, 7u}) {
        WorkerPool pool(threads);
        const auto work = [&] {
            for (int rows = 1; rows < 60; ++rows) {
                std::vector<int> counts(static_cast<std::size_t>(rows));
                pool.run(rows, wideRow, [&](int begin, int end) {
                    for (int row = begin; row < end; ++row) ++counts[static_cast<std::size_t>(row)];
                });
                EXPECT_EQ(counts, std::vector<int>(static_cast<std::size_t>(rows), 1));
            }
        };
        std::thread other(work);
        work();
        other.join();
    }
}

TEST(WorkerPool, passesExceptionsOnAndStaysUsable) {
    WorkerPool pool(3);
    for (int failing = 0; failing < 20; ++failing) {
        EXPECT_THROW(pool.run(20, wideRow,
                              [&](int begin, int end) {
                                  if (begin <= failing && failing < end) throw std::runtime_error("row");
                              }),
                     std::runtime_error);
    }
    std::atomic<int> rows{0};
    pool.run(20, wideRow, [&](int begin, int end) { rows += end - begin; });
    EXPECT_EQ(rows, 20);
}

} // namespace
