#include "embedded/engine/Statistics.h"

#include <algorithm>
#include <mutex>

namespace embedded {
namespace {

struct Guarded {
    std::mutex mutex;
    Statistics statistics;
};

Guarded& guarded() {
    static Guarded all;
    return all;
}

} // namespace

Statistics statistics() {
    const std::lock_guard<std::mutex> lock(guarded().mutex);
    return guarded().statistics;
}

void resetStatistics() {
    const std::lock_guard<std::mutex> lock(guarded().mutex);
    guarded().statistics = {};
}

void addToStatistics(const Statistics& run) {
    const std::lock_guard<std::mutex> lock(guarded().mutex);
    Statistics& all = guarded().statistics;
    all.nodesRun += run.nodesRun;
    all.pixelsComputed += run.pixelsComputed;
    all.bytesHeld = run.bytesHeld;
    all.mostBytesHeld = std::max(all.mostBytesHeld, run.mostBytesHeld);
}

} // namespace embedded
