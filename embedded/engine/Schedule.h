// The order of work for a plan. Some nodes are kept as images; the others stream: they are computed segment
// by segment inside the groups that read them, and never exist as a whole.
#pragma once

#include "embedded/engine/Plan.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <vector>

namespace embedded {

// One piece of work: a node, with the streaming nodes that it reads, directly or through others. Its result
// is kept as an image, shown, or both.
struct Group {
    std::size_t root;                  // of the plan
    bool keepsImage;                   // the root becomes an image here
    std::vector<std::size_t> streamed; // in the plan's order, without the root
    std::vector<Showing> showings;
    std::vector<std::size_t> released; // images that no later group reads
};

struct Schedule {
    std::vector<Group> groups;
    // The images there were at the beginning and are used, by node of the plan; pictures too.
    std::vector<std::shared_ptr<const Image>> images;
    std::uint64_t peakBytes = 0; // estimate of the memory that images take at the same time
};

// What earlier runs tell.
struct History {
    // An image that is there already, or null.
    std::function<std::shared_ptr<const Image>(const ImageKey& key)> find;
    // What belonged to the run before this one. Where a node is among it and a reader is not, somebody is
    // editing: the node becomes an image, so that the next edits begin behind it.
    std::set<ImageKey> computedBefore;
};

Schedule makeSchedule(const Plan& plan, const History& history);

} // namespace embedded
