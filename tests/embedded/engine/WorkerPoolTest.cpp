#include "embedded/engine/WorkerPool.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace embedded;

namespace {

TEST(WorkerPool, computesEveryRowOnceFromAnyNumberOfCallersAndPassesExceptionsOn) {
    constexpr int wideRow = 1 << 15; // samples; two such rows make a band
    for (const unsigned threads : {0u, 1u, 2u, 7u}) {
        WorkerPool pool(threads);
        const auto work = [&] {
            for (int rows = 1; rows < 60; ++rows) {
                std::vector<int> counts(static_cast<std::size_t>(rows));
                pool.run(rows, wideRow, [&](int begin, int end) {
                    for (int row = begin; row < end; ++row) ++counts[static_cast<std::size_t>(row)];
                });
                EXPECT_EQ(counts, std::vector<int>(static_cast<std::size_t>(rows), 1));
                const auto failInTheMiddle = [rows](int begin, int end) {
                    if (begin <= rows / 2 && rows / 2 < end) throw std::runtime_error("row");
                };
                EXPECT_THROW(pool.run(rows, wideRow, failInTheMiddle), std::runtime_error);
            }
        };
        std::thread other(work);
        work();
        other.join();
    }
}

} // namespace
