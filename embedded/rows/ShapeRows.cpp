#include "embedded/rows/ShapeRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {
namespace {

constexpr int runLength = 64;

inline float larger(float a, float b) {
    return a > b ? a : b;
}

inline float smaller(float a, float b) {
    return a < b ? a : b;
}

inline float lengthOf(float x, float y) {
    return squareRoot(x * x + y * y);
}

// All half sectors are folded onto one: its side runs from the tip, which points up before the turn, to the
// inner corner.
inline float starDistance(const ShapeOutline& outline, float x, float y) {
    const float turns = turnsTo(-y, x);
    const float folded =
        absolute(turns - outline.sector * static_cast<float>(roundToInt(turns / outline.sector)));
    const float length = lengthOf(x, y);
    const float fromTipX = length * cosineOfTurns(folded) - outline.radius;
    const float fromTipY = length * sineOfTurns(folded);
    const float sideX = outline.valleyX - outline.radius;
    const float sideY = outline.valleyY;
    const float squared = larger(sideX * sideX + sideY * sideY, 1e-12f);
    const float along = clamp((fromTipX * sideX + fromTipY * sideY) / squared, 0.0f, 1.0f);
    const float apart = lengthOf(fromTipX - sideX * along, fromTipY - sideY * along);
    return sideX * fromTipY - sideY * fromTipX > 0 ? -apart : apart;
}

// Signed distances from the outline, negative inside, as in I. Quilez, "2D distance functions".
template <ShapeForm form>
inline float distanceAt(const ShapeOutline& outline, float placeX, float placeY) {
    const float radius = outline.radius;
    const float second = outline.second;
    const float x = placeX * outline.turnCosine + placeY * outline.turnSine;
    const float y = placeY * outline.turnCosine - placeX * outline.turnSine;
    if (form == ShapeForm::Disc) return lengthOf(x, y) - radius;
    if (form == ShapeForm::Ring)
        return absolute(lengthOf(x, y) - 0.5f * (radius + second)) - 0.5f * (radius - second);
    if (form == ShapeForm::Line) return lengthOf(larger(absolute(x) - (radius - second), 0.0f), y) - second;
    if (form == ShapeForm::Star) return starDistance(outline, x, y);
    const float beyondX = absolute(x) - radius; // a box
    const float beyondY = absolute(y) - second;
    return lengthOf(larger(beyondX, 0.0f), larger(beyondY, 0.0f)) + smaller(larger(beyondX, beyondY), 0.0f);
}

// The middle of the nearest neighbour is on the place's own side.
inline float besideNeighbour(float place, float cellSize) {
    return place - (place < 0 ? -cellSize : cellSize);
}

// A shape reaches less than a cell from its middle, so only the neighbours on the place's own side count.
template <ShapeForm form>
void computeRun(const ShapeOutline& shape, const float* x, float y, int count, float* __restrict out) {
    const ShapeOutline outline = shape;
    const float besideY = besideNeighbour(y, outline.cellHeight);
    const int reachedDown = absolute(besideY) < outline.reach;
    int reachedAcross = 0;
    float besideX[runLength]; // or x where the neighbour does not reach
    for (int i = 0; i < count; ++i) {
        const float beside = besideNeighbour(x[i], outline.cellWidth);
        const bool isReached = absolute(beside) < outline.reach;
        besideX[i] = isReached ? beside : x[i];
        reachedAcross |= isReached;
        out[i] = 1e9f;
    }
    for (int across = 0; across <= reachedAcross; ++across) {
        const float* const placeX = across ? besideX : x;
        for (int down = 0; down <= reachedDown; ++down) {
            const float placeY = down ? besideY : y;
            for (int i = 0; i < count; ++i)
                out[i] = smaller(out[i], distanceAt<form>(outline, placeX[i], placeY));
        }
    }
    for (int i = 0; i < count; ++i) out[i] = clamp(0.5f - out[i] / outline.softness, 0.0f, 1.0f);
}

template <ShapeForm form>
void computeRow(const ShapeOutline& outline, const float* x, float y, int count, float* out) {
    for (int i = 0; i < count; i += runLength) {
        const int length = count - i < runLength ? count - i : runLength;
        computeRun<form>(outline, x + i, y, length, out + i);
    }
}

} // namespace

void shapeRow(const ShapeOutline& outline, const float* x, float y, int count, float* out) {
    switch (outline.form) {
    case ShapeForm::Disc:
        return computeRow<ShapeForm::Disc>(outline, x, y, count, out);
    case ShapeForm::Polygon: // a star whose inner corners lie on the sides
    case ShapeForm::Star:
        return computeRow<ShapeForm::Star>(outline, x, y, count, out);
    case ShapeForm::Box:
        return computeRow<ShapeForm::Box>(outline, x, y, count, out);
    case ShapeForm::Ring:
        return computeRow<ShapeForm::Ring>(outline, x, y, count, out);
    case ShapeForm::Line:
        return computeRow<ShapeForm::Line>(outline, x, y, count, out);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
