#include "embedded/nodes/Shape.h"

#include "embedded/nodes/CellAxis.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/ShapeRows.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Form, Size, Proportion, Sides, Rotation, Softness, Repeats };

ShapeOutline outlineOf(const NodeRun& run) {
    const float acrossPixels = static_cast<float>(run.width) / static_cast<float>(run.integer(Repeats, 0));
    const float downPixels = static_cast<float>(run.height) / static_cast<float>(run.integer(Repeats, 1));
    const float unit = std::min(acrossPixels, downPixels);
    ShapeOutline outline{};
    outline.form = static_cast<ShapeForm>(run.integer(Form));
    outline.radius = 0.5f * run.number(Size);
    outline.second = outline.radius * run.number(Proportion);
    outline.turnCosine = cosineOfTurns(run.number(Rotation));
    outline.turnSine = sineOfTurns(run.number(Rotation));
    outline.sector = 1.0f / static_cast<float>(run.integer(Sides));
    const float halfSector = 0.5f * outline.sector;
    const bool isPolygon = outline.form == ShapeForm::Polygon;
    const float inner = isPolygon ? outline.radius * cosineOfTurns(halfSector) : outline.second;
    outline.valleyX = inner * cosineOfTurns(halfSector);
    outline.valleyY = inner * sineOfTurns(halfSector);
    outline.softness = std::max(run.number(Softness), std::min(1.0f / unit, 1.0f));
    const bool isBox = outline.form == ShapeForm::Box;
    const float farthest = isBox
                               ? squareRoot(outline.radius * outline.radius + outline.second * outline.second)
                               : outline.radius;
    outline.reach = farthest + 0.5f * outline.softness;
    outline.cellWidth = acrossPixels / unit;
    outline.cellHeight = downPixels / unit;
    return outline;
}

// Of pixels, from the middles of their cells.
std::vector<float> placesOf(int size, int cells, float cellSize) {
    std::vector<float> places = CellAxis(size, cells).places;
    for (float& place : places) place = (place - 0.5f) * cellSize;
    return places;
}

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const ShapeOutline outline = outlineOf(run);
    return makeRowKernel([outline, x = placesOf(run.width, run.integer(Repeats, 0), outline.cellWidth),
                          y = placesOf(run.height, run.integer(Repeats, 1), outline.cellHeight),
                          row = shapeRow.chosen()](const Segment& segment, const SourceRow*,
                                                   float* const* result) {
        row(outline, x.data() + segment.x, y[static_cast<std::size_t>(segment.y)], segment.count, result[0]);
    });
}

const NodeKernel kernel{prepare, nullptr};

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
        nullptr,
        nullptr,
        400,
        &kernel};
}

} // namespace embedded
