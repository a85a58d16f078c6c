#include "embedded/rows/WeaveRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

inline float greater(float a, float b) {
    return a > b ? a : b;
}

} // namespace

void weaveRow(const WeaveRowOf& row, const ThreadRun* runs, int runCount, const ThreadPlaces& places,
              float* out) {
    float* __restrict const pixels = out;
    const float* const offsets = places.offsets;
    const float* const covers = places.covers;
    const float* const roundings = places.roundings;
    const float* const ways = places.ways;
    const float halfWidth = row.halfWidth;
    const float weftOffset = row.weftOffset;
    const float weftCover = row.weftCover;
    const float weftRounding = row.weftRounding;
    const float weftValue = row.weftValue;
    const bool onWeft = weftOffset <= halfWidth;
    for (int k = 0; k < runCount; ++k) {
        const ThreadRun run = runs[k];
        const float warpRise = run.warpRise;
        const float start = run.weftStart;
        const float end = run.weftEnd;
        const float warpValue = run.warpValue;
        if (row.result == WeaveResult::Mask) {
            for (int i = run.begin; i < run.end; ++i) pixels[i] = greater(covers[i], weftCover);
        } else if (row.result == WeaveResult::Height) {
            for (int i = run.begin; i < run.end; ++i)
                pixels[i] = greater((warpRise + roundings[i]) * covers[i],
                                    (mix(start, end, ways[i]) + weftRounding) * weftCover);
        } else if (onWeft) { // the higher thread shows
            for (int i = run.begin; i < run.end; ++i) {
                const float warpHeight = offsets[i] <= halfWidth ? warpRise + roundings[i] : -1.0f;
                pixels[i] = warpHeight >= mix(start, end, ways[i]) + weftRounding ? warpValue : weftValue;
            }
        } else { // gaps belong to the nearer thread
            for (int i = run.begin; i < run.end; ++i)
                pixels[i] = offsets[i] <= weftOffset ? warpValue : weftValue;
        }
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
