// What two render jobs must share to be rendered by one engine handle.
#pragma once

#include <vector>

namespace SubstanceAir {

struct StateKey {
    unsigned int packageUid = 0;
    std::vector<unsigned char> bytes; // the values of the graph's system inputs
};

inline bool operator==(const StateKey& a, const StateKey& b) {
    return a.packageUid == b.packageUid && a.bytes == b.bytes;
}

} // namespace SubstanceAir
