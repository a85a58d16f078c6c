#include "embedded/nodes/Cellular.h"

#include "embedded/nodes/CellAxis.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/CellularRows.h"

namespace embedded {
namespace {

enum Parameter { Result, Metric, Repeats, Jitter, Seed };

// The points of all cells, with the wrapped neighbours within reach around them.
class Points {
public:
    Points(int columns, int rows, float jitter, std::uint32_t seed)
        : stride_(columns + 2 * cellReach)
        , points_(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(rows + 2 * cellReach)) {
        for (int row = -cellReach; row < rows + cellReach; ++row) {
            for (int column = -cellReach; column < columns + cellReach; ++column) {
                const Hash3 random =
                    hash(static_cast<std::uint32_t>((column + cellReach * columns) % columns),
                         static_cast<std::uint32_t>((row + cellReach * rows) % rows), seed);
                points_[index(column, row)] = {
                    static_cast<float>(column) + 0.5f + jitter * (unitFloat(random.x) - 0.5f),
                    static_cast<float>(row) + 0.5f + jitter * (unitFloat(random.y) - 0.5f),
                    unitFloat(random.z)};
            }
        }
    }

    int stride() const { return stride_; }
    const CellPoint* row(int row) const { return points_.data() + index(0, row); }

private:
    std::size_t index(int column, int row) const {
        return static_cast<std::size_t>(row + cellReach) * static_cast<std::size_t>(stride_) +
               static_cast<std::size_t>(column + cellReach);
    }

    int stride_;
    std::vector<CellPoint> points_;
};

class CellRows : public RowKernel {
public:
    explicit CellRows(const NodeRun& run)
        : result_(static_cast<CellResult>(run.integer(Result)))
        , metric_(result_ == CellResult::EdgeDistance ? CellMetric::Euclidean
                                                      : static_cast<CellMetric>(run.integer(Metric)))
        , across_(run.width, run.integer(Repeats, 0))
        , down_(run.height, run.integer(Repeats, 1))
        , x_(positions(across_))
        , y_(positions(down_))
        , points_(across_.cells, down_.cells, run.number(Jitter),
                  static_cast<std::uint32_t>(run.integer(Seed))) {}

    void compute(const Segment& segment, const SourceRow*, RowScratch*, float* const* result) const override {
        const CellularRowOf row = {result_,
                                   metric_,
                                   y_[static_cast<std::size_t>(segment.y)],
                                   x_.data(),
                                   across_.firstPixels.data(),
                                   points_.row(down_.cellAt(segment.y)),
                                   points_.stride()};
        cellularRow.chosen()(row, across_.cellAt(segment.x), segment.x, segment.count, result[0]);
    }

private:
    // Of pixels, in cells from the image's corner.
    static std::vector<float> positions(const CellAxis& axis) {
        std::vector<float> positions;
        const auto size = static_cast<int>(axis.cellOf.size());
        positions.reserve(axis.cellOf.size());
        for (int pixel = 0; pixel < size; ++pixel)
            positions.push_back(static_cast<float>((pixel + 0.5) * axis.cells / size));
        return positions;
    }

    CellResult result_;
    CellMetric metric_;
    CellAxis across_;
    CellAxis down_;
    std::vector<float> x_;
    std::vector<float> y_;
    Points points_;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return std::make_unique<CellRows>(run);
}

const NodeKernel kernel{prepare, nullptr};

} // namespace

NodeKind cellularKind() {
    return {
        4,
        "cellular",
        "One random point in each lattice cell; distances are in cells.",
        {},
        {choice("result", {"f1", "f2MinusF1", "edgeDistance", "cellId"}, 0,
                "distance to the nearest point, the second less the first, distance to the border between "
                "them, or the nearest point's random number"),
         choice("metric", {"euclidean", "manhattan", "chebyshev"}, 0,
                "how distances are measured; edge distances are always euclidean"),
         number("repeats", ValueType::Integer2, 8, 1, 256, "cells across and down"),
         number("jitter", ValueType::Float, 1, 0, 1,
                "0: points in the middle of their cells; 1: anywhere in them"),
         seedParameter()},
        ResultChannels::Gray,
        nullptr,
        nullptr,
        450,
        &kernel};
}

} // namespace embedded
