#include "embedded/nodes/Bricks.h"

#include "embedded/nodes/CellAxis.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/BricksRows.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Result, Pattern, Columns, Rows, Mortar, Bevel, Rounding, Offset, Tilt, Seed };
enum PatternChoice { Running, Stack, Basket, Herringbone };

// Running and stack: a cell is a brick. Basket and herringbone: bricks are two cells long, lying or upright,
// and their layout repeats after this many cells in both directions.
constexpr int layoutPeriod = 4;

int roundedUp(int count, int period) {
    return (count + period - 1) / period * period;
}

// The brick that a cell belongs to.
struct Brick {
    bool upright;
    int across; // cells of the brick that are left of the cell and above it
    int above;
};

Brick basketBrick(int column, int row) {
    const bool upright = (column / 2 + row / 2) % 2 == 1; // two bricks make a square
    return {upright, upright ? 0 : column % 2, upright ? row % 2 : 0};
}

// Along a row of cells: left and right half of a lying brick, lower and upper half of upright ones; each row
// is one cell further.
Brick herringboneBrick(int column, int row) {
    switch ((column + layoutPeriod - row % layoutPeriod) % layoutPeriod) {
    case 0:
        return {false, 0, 0};
    case 1:
        return {false, 1, 0};
    case 2:
        return {true, 0, 1};
    default:
        return {true, 0, 0};
    }
}

// The length, in row heights, from a brick's middle to its edge at the joint.
float halfSize(float length, float mortar) {
    return clamp(0.5f * (length - mortar), 0.0f, length);
}

struct BrickScratch : RowScratch {
    std::vector<BrickRun> runs;
};

// All lengths are in row heights.
class Wall : public RowKernel {
public:
    explicit Wall(const NodeRun& run)
        : pattern_(run.integer(Pattern))
        , isPaved_(pattern_ == Basket || pattern_ == Herringbone)
        , columns_(isPaved_ ? 2 * roundedUp(run.integer(Columns), layoutPeriod / 2) : run.integer(Columns))
        , rows_(isPaved_ ? roundedUp(run.integer(Rows), layoutPeriod) : run.integer(Rows))
        , across_(run.width, columns_)
        , shiftedAcross_(run.width, columns_,
                         1.0 - static_cast<double>(pattern_ == Running ? run.number(Offset) : 0.0f))
        , down_(run.height, rows_)
        , tilt_(run.number(Tilt))
        , seed_(static_cast<std::uint32_t>(run.integer(Seed))) {
        const float pixel = static_cast<float>(rows_) / static_cast<float>(run.height);
        const float mortar = run.number(Mortar);
        cellWidth_ = static_cast<float>(run.width) / static_cast<float>(columns_) * pixel;
        lying_ = {halfSize(isPaved_ ? 2.0f * cellWidth_ : cellWidth_, mortar), halfSize(1.0f, mortar)};
        upright_ = {halfSize(cellWidth_, mortar), halfSize(2.0f, mortar)};
        float widest = std::min(lying_.halfWidth, lying_.halfHeight);
        if (isPaved_) widest = std::min({widest, upright_.halfWidth, upright_.halfHeight});
        const float bevel = run.number(Bevel);
        face_ = {static_cast<BrickResult>(run.integer(Result)), clamp(run.number(Rounding), 0.0f, widest),
                 1.0f / pixel, bevel > 0 ? 1.0f / bevel : 0.0f};
    }

    std::unique_ptr<RowScratch> makeScratch() const override { return std::make_unique<BrickScratch>(); }

    void compute(const Segment& segment, const SourceRow*, RowScratch* scratch,
                 float* const* result) const override {
        std::vector<BrickRun>& runs = static_cast<BrickScratch&>(*scratch).runs;
        runs.clear();
        const bool isShifted = pattern_ == Running && down_.cellAt(segment.y) % 2 == 1;
        const CellAxis& axis = isShifted ? shiftedAcross_ : across_;
        eachCell(axis, segment.x, segment.count, [&](int cell, int begin, int end) {
            BrickRun run = isPaved_ ? pavedRun(cell, segment.y)
                                    : laidRun(isShifted ? (cell + columns_ - 1) % columns_ : cell, segment.y);
            run.begin = begin - segment.x;
            run.end = end - segment.x;
            runs.push_back(run);
        });
        brickRow.chosen()(face_, runs.data(), static_cast<int>(runs.size()), axis.places.data() + segment.x,
                          result[0]);
    }

private:
    struct Size {
        float halfWidth;
        float halfHeight;
    };

    BrickRun laidRun(int column, int y) const {
        return runOf(column, down_.cellAt(y), -0.5f, cellWidth_, down_.placeAt(y) - 0.5f, 1.0f, lying_);
    }

    BrickRun pavedRun(int cell, int y) const {
        const int row = down_.cellAt(y);
        const Brick brick = pattern_ == Basket ? basketBrick(cell, row) : herringboneBrick(cell, row);
        const float cellsAcross = brick.upright ? 1.0f : 2.0f;
        const float cellsDown = brick.upright ? 2.0f : 1.0f;
        return runOf((cell + columns_ - brick.across) % columns_, (row + rows_ - brick.above) % rows_,
                     static_cast<float>(brick.across) - 0.5f * cellsAcross, cellsAcross * cellWidth_,
                     down_.placeAt(y) + static_cast<float>(brick.above) - 0.5f * cellsDown, cellsDown,
                     brick.upright ? upright_ : lying_);
    }

    // Of a brick that begins in a cell and is, with its joint, so wide and high.
    BrickRun runOf(int column, int row, float origin, float width, float y, float height,
                   const Size& size) const {
        const Hash3 random = hash(static_cast<std::uint32_t>(column), static_cast<std::uint32_t>(row), seed_);
        const float slantDown = y / height * (unitFloat(random.z) - 0.5f);
        return {0,
                0,
                origin,
                cellWidth_,
                y,
                size.halfWidth,
                size.halfHeight,
                1.0f - tilt_ * (0.5f + slantDown),
                -tilt_ * (unitFloat(random.y) - 0.5f) / width,
                unitFloat(random.x)};
    }

    int pattern_;
    bool isPaved_;
    int columns_; // of cells
    int rows_;
    CellAxis across_;
    CellAxis shiftedAcross_; // in every second row; the first cell belongs to the last brick
    CellAxis down_;
    float tilt_;
    std::uint32_t seed_;
    float cellWidth_ = 0;
    Size lying_{};
    Size upright_{};
    BrickFace face_{};
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return std::make_unique<Wall>(run);
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind bricksKind() {
    return {
        5,
        "bricks",
        "A wall or a pavement of bricks; lengths are relative to the height of a row.",
        {},
        {choice(
             "result", {"mask", "height", "id"}, 0,
             "1 on bricks and 0 in mortar, height rising from the mortar over the bevel, or a random number "
             "for each brick and the mortar around it"),
         choice(
             "pattern", {"running", "stack", "basket", "herringbone"}, 0,
             "running: every second row shifted; stack: none; basket: two lying bricks and two upright ones "
             "in turn; herringbone: lying and upright bricks in steps. Upright bricks are two rows high "
             "and half a column wide: twice as long as wide, like the lying ones, where there are twice as "
             "many rows as columns in a square image"),
         number("columns", ValueType::Integer, 4, 1, 512,
                "lengths of a lying brick across; basket and herringbone round up to an even number"),
         number("rows", ValueType::Integer, 8, 1, 512,
                "heights of a lying brick down; an even number keeps the shift alternating across the edge; "
                "basket and herringbone round up to a multiple of 4"),
         number("mortar", ValueType::Float, 0.1, 0, 1, "width of the joints"),
         number("bevel", ValueType::Float, 0.1, 0, 1, "width over which the height rises"),
         number("rounding", ValueType::Float, 0.05, 0, 0.5, "radius of the corners"),
         number("offset", ValueType::Float, 0.5, 0, 1, "running: shift of every second row, in bricks"),
         number("tilt", ValueType::Float, 0, 0, 1, "largest random slant of a brick's height"),
         seedParameter()},
        ResultChannels::Gray,
        nullptr,
        nullptr,
        60,
        &kernel};
}

} // namespace embedded
