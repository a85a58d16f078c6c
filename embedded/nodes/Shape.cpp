#include "embedded/nodes/Shape.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

namespace embedded {
namespace {

enum Parameter { Form, Size, Proportion, Sides, Rotation, Softness, Repeats };
enum FormChoice { Disc, Polygon, Star, Box, Ring, Line };

struct Vector {
    float x, y;
};

float lengthOf(Vector v) {
    return std::sqrt(v.x * v.x + v.y * v.y);
}

float larger(float a, float b) {
    return a > b ? a : b;
}

float smaller(float a, float b) {
    return a < b ? a : b;
}

// Signed distances from the outline, negative inside, as in I. Quilez, "2D distance functions". Lengths are
// relative to the shorter side of a cell.
struct Outline {
    explicit Outline(const NodeRun& run)
        : form(run.integer(Form))
        , radius(0.5f * run.number(Size))
        , second(radius * run.number(Proportion))
        , turnCosine(cosineOfTurns(run.number(Rotation)))
        , turnSine(sineOfTurns(run.number(Rotation)))
        , sector(1.0f / static_cast<float>(run.integer(Sides))) {
        const float halfSector = 0.5f * sector;
        // A polygon is a star whose inner corners lie on its sides.
        const float inner = form == Polygon ? radius * cosineOfTurns(halfSector) : second;
        valley = {inner * cosineOfTurns(halfSector), inner * sineOfTurns(halfSector)};
    }

    float farthest() const { return form == Box ? lengthOf({radius, second}) : radius; }

    float distance(Vector place) const {
        const Vector turned = {place.x * turnCosine + place.y * turnSine,
                               place.y * turnCosine - place.x * turnSine};
        switch (form) {
        case Disc:
            return lengthOf(turned) - radius;
        case Polygon:
        case Star:
            return starDistance(turned);
        case Box:
            return boxDistance({absolute(turned.x) - radius, absolute(turned.y) - second});
        case Ring:
            return absolute(lengthOf(turned) - 0.5f * (radius + second)) - 0.5f * (radius - second);
        default: {
            const float beyond = larger(absolute(turned.x) - (radius - second), 0.0f);
            return lengthOf({beyond, turned.y}) - second;
        }
        }
    }

    static float boxDistance(Vector beyond) {
        return lengthOf({larger(beyond.x, 0.0f), larger(beyond.y, 0.0f)}) +
               smaller(larger(beyond.x, beyond.y), 0.0f);
    }

    // All half sectors are folded onto one: its side runs from the tip, which points up before the turn, to
    // the inner corner.
    float starDistance(Vector place) const {
        const float turns = turnsTo(-place.y, place.x);
        const float folded = absolute(turns - sector * static_cast<float>(roundToInt(turns / sector)));
        const float length = lengthOf(place);
        const Vector fromTip = {length * cosineOfTurns(folded) - radius, length * sineOfTurns(folded)};
        const Vector side = {valley.x - radius, valley.y};
        const float squared = larger(side.x * side.x + side.y * side.y, 1e-12f);
        const float along = clamp((fromTip.x * side.x + fromTip.y * side.y) / squared, 0.0f, 1.0f);
        const float apart = lengthOf({fromTip.x - side.x * along, fromTip.y - side.y * along});
        return side.x * fromTip.y - side.y * fromTip.x > 0 ? -apart : apart;
    }

    int form;
    float radius;
    float second; // inner radius, half the height, or half the thickness
    float turnCosine;
    float turnSine;
    float sector; // in turns
    Vector valley{};
};

struct Shapes {
    explicit Shapes(const NodeRun& run)
        : outline(run)
        , width(run.width)
        , height(run.height)
        , columns(run.integer(Repeats, 0))
        , rows(run.integer(Repeats, 1)) {
        const float acrossPixels = static_cast<float>(width) / static_cast<float>(columns);
        const float downPixels = static_cast<float>(height) / static_cast<float>(rows);
        const float unit = smaller(acrossPixels, downPixels);
        cellWidth = acrossPixels / unit;
        cellHeight = downPixels / unit;
        softness = larger(run.number(Softness), smaller(1.0f / unit, 1.0f));
        reach = outline.farthest() + 0.5f * softness;
    }

    void computeRow(int y, float* out) const {
        const double down = (y + 0.5) * rows / height;
        const float placeY = (static_cast<float>(down - static_cast<int>(down)) - 0.5f) * cellHeight;
        for (int x = 0; x < width; ++x) {
            const double across = (x + 0.5) * columns / width;
            const float placeX = (static_cast<float>(across - static_cast<int>(across)) - 0.5f) * cellWidth;
            out[x] = clamp(0.5f - distance(placeX, placeY) / softness, 0.0f, 1.0f);
        }
    }

    // To the nearest outline. A shape reaches less than a cell from its centre, so only the neighbours on the
    // place's own side count.
    float distance(float x, float y) const {
        const float besideX = x - (x < 0 ? -cellWidth : cellWidth);
        const float besideY = y - (y < 0 ? -cellHeight : cellHeight);
        float nearest = outline.distance({x, y});
        const bool reachedAcross = absolute(besideX) < reach;
        const bool reachedDown = absolute(besideY) < reach;
        if (reachedAcross) nearest = smaller(nearest, outline.distance({besideX, y}));
        if (reachedDown) nearest = smaller(nearest, outline.distance({x, besideY}));
        if (reachedAcross && reachedDown) nearest = smaller(nearest, outline.distance({besideX, besideY}));
        return nearest;
    }

    Outline outline;
    int width;
    int height;
    int columns;
    int rows;
    float cellWidth = 1;
    float cellHeight = 1;
    float softness = 0;
    float reach = 0;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel(run, [shapes = Shapes(run)](int y, float* out) { shapes.computeRow(y, out); });
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind shapeKind() {
    return {
        16,
        "shape",
        "A shape in the middle of each cell, 1 inside and 0 outside; lengths are relative to the cell's "
        "shorter side. Shapes that overlap their neighbours join them.",
        {},
        {choice("form", {"disc", "polygon", "star", "box", "ring", "line"}, 0, "which shape"),
         number("size", ValueType::Float, 0.8, 0, 1, "largest diameter, width of a box, length of a line"),
         number("proportion", ValueType::Float, 0.5, 0, 1,
                "star and ring: inner to outer radius; box: height to width; line: thickness to length"),
         number("sides", ValueType::Integer, 5, 3, 64, "corners of a polygon, tips of a star"),
         number("rotation", ValueType::Float, 0, -1, 1, "turns, clockwise"),
         number("softness", ValueType::Float, 0, 0, 0.5, "width of the edge; at least a pixel"),
         number("repeats", ValueType::Integer2, 1, 1, 512, "cells across and down")},
        ResultChannels::Gray,
        true,
        80,
        &kernel};
}

} // namespace embedded
