// What the engine has done in this process, for tests, benchmarks and the tool.
#pragma once

#include <cstdint>

namespace embedded {

struct Statistics {
    std::uint64_t nodesRun = 0;       // what had not changed is not counted
    std::uint64_t pixelsComputed = 0; // of all nodes together
    std::uint64_t bytesHeld = 0;      // by images after the last run
    std::uint64_t mostBytesHeld = 0;  // by images at any moment
};

// Safe from any thread.
Statistics statistics();
void resetStatistics();

// For the engine.
void addToStatistics(const Statistics& run);

} // namespace embedded
