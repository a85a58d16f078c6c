#include "embedded/nodes/Bricks.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

namespace embedded {
namespace {

enum Parameter { Result, Pattern, Columns, Rows, Mortar, Bevel, Rounding, Offset, Tilt, Seed };
enum ResultChoice { Mask, Height, Id };

// All lengths in row heights.
struct Wall {
    explicit Wall(const NodeRun& run)
        : width(run.width)
        , height(run.height)
        , result(run.integer(Result))
        , columns(run.integer(Columns))
        , rows(run.integer(Rows))
        , pixel(static_cast<float>(rows) / static_cast<float>(height))
        , brickWidth(static_cast<float>(width) / static_cast<float>(columns) * pixel)
        , halfWidth(clamp(0.5f * (brickWidth - run.number(Mortar)), 0.0f, brickWidth))
        , halfHeight(clamp(0.5f * (1.0f - run.number(Mortar)), 0.0f, 1.0f))
        , radius(clamp(run.number(Rounding), 0.0f, halfWidth < halfHeight ? halfWidth : halfHeight))
        , bevel(run.number(Bevel))
        , shift(run.integer(Pattern) == 0 ? run.number(Offset) : 0.0f)
        , tilt(run.number(Tilt))
        , seed(static_cast<std::uint32_t>(run.integer(Seed))) {}

    void computeRow(int y, float* out) const {
        const double position = (y + 0.5) * rows / height;
        const int row = static_cast<int>(position);
        const float placeDown = static_cast<float>(position - row) - 0.5f;
        const double start = row % 2 == 1 ? static_cast<double>(shift) : 0.0;
        Hash3 random{};
        for (int x = 0, previous = -1; x < width; ++x) {
            double across = (x + 0.5) * columns / width - start;
            if (across < 0) across += columns;
            const int column = static_cast<int>(across);
            if (column != previous)
                random = hash(static_cast<std::uint32_t>(column), static_cast<std::uint32_t>(row), seed);
            previous = column;
            const float placeAcross = static_cast<float>(across - column) - 0.5f;
            out[x] = result == Id ? unitFloat(random.x) : shade(placeAcross, placeDown, random);
        }
    }

    float shade(float placeAcross, float placeDown, const Hash3& random) const {
        const float inside = depth(absolute(placeAcross) * brickWidth, absolute(placeDown));
        const float mask = clamp(inside / pixel + 0.5f, 0.0f, 1.0f);
        if (result == Mask) return mask;
        const float slant =
            placeAcross * (unitFloat(random.y) - 0.5f) + placeDown * (unitFloat(random.z) - 0.5f);
        const float top = 1.0f - tilt * (0.5f + slant);
        return top * (bevel > 0 ? smooth(clamp(inside / bevel, 0.0f, 1.0f)) : mask);
    }

    // How far inside a brick with rounded corners: the negative of its signed distance.
    float depth(float x, float y) const {
        const float overX = x - (halfWidth - radius);
        const float overY = y - (halfHeight - radius);
        const float cornerX = overX > 0 ? overX : 0.0f;
        const float cornerY = overY > 0 ? overY : 0.0f;
        const float larger = overX > overY ? overX : overY;
        return radius - std::sqrt(cornerX * cornerX + cornerY * cornerY) - (larger < 0 ? larger : 0.0f);
    }

    int width;
    int height;
    int result;
    int columns;
    int rows;
    float pixel;
    float brickWidth;
    float halfWidth;
    float halfHeight;
    float radius;
    float bevel;
    float shift;
    float tilt;
    std::uint32_t seed;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel(run, [wall = Wall(run)](int y, float* out) { wall.computeRow(y, out); });
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind bricksKind() {
    return {
        5,
        "bricks",
        "A wall of bricks; lengths are relative to the height of a row.",
        {},
        {choice(
             "result", {"mask", "height", "id"}, 0,
             "1 on bricks and 0 in mortar, height rising from the mortar over the bevel, or a random number "
             "for each brick and the mortar around it"),
         choice("pattern", {"running", "stack"}, 0, "every second row shifted, or none"),
         number("columns", ValueType::Integer, 4, 1, 512, "bricks in a row"),
         number("rows", ValueType::Integer, 8, 1, 512,
                "rows; an even number keeps the shift alternating across the edge"),
         number("mortar", ValueType::Float, 0.1, 0, 1, "width of the joints"),
         number("bevel", ValueType::Float, 0.1, 0, 1, "width over which the height rises"),
         number("rounding", ValueType::Float, 0.05, 0, 0.5, "radius of the corners"),
         number("offset", ValueType::Float, 0.5, 0, 1, "shift of every second row, in bricks"),
         number("tilt", ValueType::Float, 0, 0, 1, "largest random slant of a brick's height"),
         seedParameter()},
        ResultChannels::Gray,
        true,
        40,
        &kernel};
}

} // namespace embedded
