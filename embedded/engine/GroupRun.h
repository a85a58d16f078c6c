// Runs one group of a schedule.
#pragma once

#include "embedded/engine/Bands.h"
#include "embedded/engine/Schedule.h"
#include "embedded/program/PixelFormat.h"

#include <memory>
#include <vector>

namespace embedded {

// Where a level of an output's texture is written, tightly packed.
struct TextureTarget {
    PixelFormat format;
    unsigned char* bytes;
};

struct GroupWork {
    std::uint64_t nodes = 0;
    std::uint64_t pixels = 0;
};

// Computes the group: its image, when it keeps one (else null), and the texture levels, one target for each
// of the group's showings. The images are those by node of the plan that there are so far. Segments have at
// most segmentLength pixels; the bytes do not depend on it, nor on the runner.
std::shared_ptr<const Image> runGroup(const Plan& plan, const Group& group,
                                      const std::vector<std::shared_ptr<const Image>>& images,
                                      const std::vector<TextureTarget>& targets,
                                      const std::shared_ptr<ImageMemory>& memory, const BandRunner& runner,
                                      int segmentLength, GroupWork& work);

// Short enough for the segments of many nodes to stay in the nearest caches.
constexpr int defaultSegmentLength = 512;

} // namespace embedded
