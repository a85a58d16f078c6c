#include "embedded/rows/WarpRows.h"

#include "embedded/rows/Sampling.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

// Where the pixels of a piece come from, in pixels right and down of them.
struct Distances {
    float x[mostPlaces];
    float y[mostPlaces];
};

void addSlopes(const WarpGuides& guides, int y, int x, int count, Distances& distances) {
    const Plane& heights = guides.heights;
    const int lastX = heights.width - 1;
    const int lastY = heights.height - 1;
    const float scale = guides.slopeScale;
    const float* const above = rowOf(heights, (y - 1) & lastY) + x;
    const float* const below = rowOf(heights, (y + 1) & lastY) + x;
    for (int i = 0; i < count; ++i) distances.y[i] -= scale * (below[i] - above[i]);
    const float* const row = rowOf(heights, y);
    // Only the ends of a row look around its edges.
    const int begin = x == 0 ? 1 : 0;
    const int end = x + count > lastX ? count - 1 : count;
    for (int i = begin; i < end; ++i) distances.x[i] -= scale * (row[x + i + 1] - row[x + i - 1]);
    if (begin > 0) distances.x[0] -= scale * (row[1 & lastX] - row[lastX]);
    if (end < count && lastX > 0) distances.x[end] -= scale * (row[0] - row[lastX - 1]);
}

void samplePiece(const Plane* source, int channels, const Distances& distances, int y, int x, int count,
                 int begin, float* const* out) {
    SamplePlaces places;
    findPlaces(source[0], x + begin, y, 1, distances.x, distances.y, count, places);
    for (int c = 0; c < channels; ++c) samplePlaces(source[c], places, count, out[c] + begin);
}

} // namespace

void warpRow(const Plane* source, int channels, const WarpGuides& guides, const float* red,
             const float* green, int y, int x, int count, float* const* out) {
    Distances distances;
    for (int begin = 0; begin < count; begin += mostPlaces) {
        const int length = count - begin < mostPlaces ? count - begin : mostPlaces;
        for (int i = 0; i < length; ++i) distances.x[i] = distances.y[i] = 0.0f;
        if (guides.heights.samples) addSlopes(guides, y, x + begin, length, distances);
        const float scale = guides.vectorScale;
        if (red) {
            for (int i = 0; i < length; ++i) distances.x[i] -= scale * (red[begin + i] - 0.5f);
            for (int i = 0; i < length; ++i) distances.y[i] -= scale * (green[begin + i] - 0.5f);
        }
        samplePiece(source, channels, distances, y, x, length, begin, out);
    }
}

void directionalWarpRow(const Plane* source, int channels, const WarpDirection& direction,
                        const float* amounts, int y, int x, int count, float* const* out) {
    const WarpDirection d = direction;
    Distances distances;
    for (int begin = 0; begin < count; begin += mostPlaces) {
        const int length = count - begin < mostPlaces ? count - begin : mostPlaces;
        for (int i = 0; i < length; ++i) {
            const float amount = amounts[begin + i] - d.still;
            distances.x[i] = -(amount * d.x);
            distances.y[i] = -(amount * d.y);
        }
        samplePiece(source, channels, distances, y, x, length, begin, out);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
