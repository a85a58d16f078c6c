#include "embedded/rows/BricksRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

// Calls emit(i, x, inside): how far right of the brick's middle, and how far inside the brick with its
// rounded corners, which is the negative of the signed distance.
template <typename Emit>
inline void eachPixel(const BrickFace& face, const BrickRun& run, const float* places, Emit emit) {
    const float radius = face.radius;
    const float straightWidth = run.halfWidth - radius;
    const float overY = absolute(run.y) - (run.halfHeight - radius);
    const float cornerY = overY > 0 ? overY : 0.0f;
    for (int i = run.begin; i < run.end; ++i) {
        const float x = (places[i] + run.origin) * run.unit;
        const float overX = absolute(x) - straightWidth;
        const float cornerX = overX > 0 ? overX : 0.0f;
        const float larger = overX > overY ? overX : overY;
        const float within = larger < 0 ? larger : 0.0f;
        emit(i, x, radius - squareRoot(cornerX * cornerX + cornerY * cornerY) - within);
    }
}

} // namespace

void brickRow(const BrickFace& face, const BrickRun* runs, int runCount, const float* places, float* out) {
    float* __restrict const row = out;
    const float pixelsPerRow = face.pixelsPerRow;
    const float bevelPerHeight = face.bevelPerHeight;
    for (int k = 0; k < runCount; ++k) {
        const BrickRun run = runs[k];
        const float top = run.top;
        const float slope = run.slope;
        if (face.result == BrickResult::Id) {
            for (int i = run.begin; i < run.end; ++i) row[i] = run.id;
        } else if (face.result == BrickResult::Mask) {
            eachPixel(face, run, places, [=](int i, float, float inside) {
                row[i] = clamp(inside * pixelsPerRow + 0.5f, 0.0f, 1.0f);
            });
        } else if (bevelPerHeight > 0) {
            eachPixel(face, run, places, [=](int i, float x, float inside) {
                row[i] = (top + slope * x) * smooth(clamp(inside * bevelPerHeight, 0.0f, 1.0f));
            });
        } else {
            eachPixel(face, run, places, [=](int i, float x, float inside) {
                row[i] = (top + slope * x) * clamp(inside * pixelsPerRow + 0.5f, 0.0f, 1.0f);
            });
        }
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
