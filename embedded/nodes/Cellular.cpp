#include "embedded/nodes/Cellular.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

#include <algorithm>
#include <limits>

namespace embedded {
namespace {

enum Parameter { Result, Metric, Repeats, Jitter, Seed };
enum ResultChoice { F1, F2MinusF1, EdgeDistance, CellId };
enum MetricChoice { Euclidean, Manhattan, Chebyshev };

constexpr float farAway = 1e9f;
constexpr int reach = 2; // the nearest points lie in the 5 x 5 cells around a pixel's
constexpr std::size_t runLength = 64;

struct Point {
    float x, y; // in cells, from the image's corner
    float id;
};

// The points of all cells, with the wrapped neighbours within reach around them.
class Points {
public:
    Points(int columns, int rows, float jitter, std::uint32_t seed)
        : stride_(columns + 2 * reach)
        , points_(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(rows + 2 * reach)) {
        for (int row = -reach; row < rows + reach; ++row) {
            for (int column = -reach; column < columns + reach; ++column) {
                const Hash3 random = hash(static_cast<std::uint32_t>((column + reach * columns) % columns),
                                          static_cast<std::uint32_t>((row + reach * rows) % rows), seed);
                points_[index(column, row)] = {
                    static_cast<float>(column) + 0.5f + jitter * (unitFloat(random.x) - 0.5f),
                    static_cast<float>(row) + 0.5f + jitter * (unitFloat(random.y) - 0.5f),
                    unitFloat(random.z)};
            }
        }
    }

    const Point& at(int column, int row) const { return points_[index(column, row)]; }

private:
    std::size_t index(int column, int row) const {
        return static_cast<std::size_t>(row + reach) * static_cast<std::size_t>(stride_) +
               static_cast<std::size_t>(column + reach);
    }

    int stride_;
    std::vector<Point> points_;
};

// Pixels of one row and one cell, with what is known about their nearest points. For the euclidean metric the
// distances are squares.
struct Run {
    std::size_t count;
    float y;
    float x[runLength];
    float first[runLength];
    float second[runLength];
    float nearestX[runLength];
    float nearestY[runLength];
    float id[runLength];
};

template <int metric>
float distance(float dx, float dy) {
    if constexpr (metric == Euclidean) return dx * dx + dy * dy;
    const float width = absolute(dx);
    const float height = absolute(dy);
    if constexpr (metric == Manhattan) return width + height;
    return width > height ? width : height;
}

template <int metric>
void consider(Run& run, const Point& point) {
    for (std::size_t i = 0; i < run.count; ++i) {
        const float measured = distance<metric>(point.x - run.x[i], point.y - run.y);
        const bool nearer = measured < run.first[i];
        const float beaten = nearer ? run.first[i] : measured;
        run.second[i] = beaten < run.second[i] ? beaten : run.second[i];
        run.first[i] = nearer ? measured : run.first[i];
        run.nearestX[i] = nearer ? point.x : run.nearestX[i];
        run.nearestY[i] = nearer ? point.y : run.nearestY[i];
        run.id[i] = nearer ? point.id : run.id[i];
    }
}

// The borders between points are perpendicular bisectors: the distance to the nearest one.
void measureEdges(Run& run, const Point& point) {
    for (std::size_t i = 0; i < run.count; ++i) {
        const float acrossX = point.x - run.nearestX[i];
        const float acrossY = point.y - run.nearestY[i];
        const float square = acrossX * acrossX + acrossY * acrossY;
        const float lead = distance<Euclidean>(point.x - run.x[i], point.y - run.y) - run.first[i];
        const float edge = square > 1e-12f ? lead / (2.0f * std::sqrt(square)) : farAway;
        run.second[i] = edge < run.second[i] ? edge : run.second[i];
    }
}

class CellRows : public RowKernel {
public:
    explicit CellRows(const NodeRun& run)
        : RowKernel(run.height)
        , width_(run.width)
        , height_(run.height)
        , result_(run.integer(Result))
        , metric_(result_ == EdgeDistance ? static_cast<int>(Euclidean) : run.integer(Metric))
        , columns_(run.integer(Repeats, 0))
        , rows_(run.integer(Repeats, 1))
        , points_(columns_, rows_, run.number(Jitter), static_cast<std::uint32_t>(run.integer(Seed))) {}

    void computeRows(int, int begin, int end, Image& result) override {
        for (int y = begin; y < end; ++y) {
            if (metric_ == Euclidean) computeRow<Euclidean>(y, result.row(y));
            if (metric_ == Manhattan) computeRow<Manhattan>(y, result.row(y));
            if (metric_ == Chebyshev) computeRow<Chebyshev>(y, result.row(y));
        }
    }

private:
    template <int metric>
    void computeRow(int y, float* out) const {
        const double acrossFactor = static_cast<double>(columns_) / width_;
        Run run;
        run.y = static_cast<float>((y + 0.5) * rows_ / height_);
        const int row = static_cast<int>((y + 0.5) * rows_ / height_);
        for (int x = 0; x < width_;) {
            const int column = static_cast<int>((x + 0.5) * acrossFactor);
            run.count = 0;
            while (run.count < runLength && x + static_cast<int>(run.count) < width_) {
                const double place = (x + static_cast<int>(run.count) + 0.5) * acrossFactor;
                if (static_cast<int>(place) != column) break;
                run.x[run.count++] = static_cast<float>(place);
            }
            findNearest<metric>(run, column, row);
            store<metric>(run, column, row, out + x);
            x += static_cast<int>(run.count);
        }
    }

    template <int metric>
    void findNearest(Run& run, int column, int row) const {
        std::fill_n(run.first, run.count, farAway);
        std::fill_n(run.second, run.count, farAway);
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) consider<metric>(run, points_.at(column + dx, row + dy));
        // Points of the outer ring are more than one cell away.
        const float* decisive = result_ == F2MinusF1 ? run.second : run.first;
        if (*std::max_element(decisive, decisive + run.count) <= 1.0f) return;
        eachOfRing(column, row, [&](const Point& point) { consider<metric>(run, point); });
    }

    template <typename Visit>
    void eachOfRing(int column, int row, Visit visit) const {
        for (int dy = -reach; dy <= reach; ++dy) {
            const int step = dy == -reach || dy == reach ? 1 : 2 * reach;
            for (int dx = -reach; dx <= reach; dx += step) visit(points_.at(column + dx, row + dy));
        }
    }

    template <int metric>
    void store(Run& run, int column, int row, float* out) const {
        if (result_ == CellId) {
            std::copy_n(run.id, run.count, out);
        } else if (result_ == EdgeDistance) {
            std::fill_n(run.second, run.count, farAway);
            for (int dy = -reach; dy <= reach; ++dy)
                for (int dx = -reach; dx <= reach; ++dx) measureEdges(run, points_.at(column + dx, row + dy));
            std::copy_n(run.second, run.count, out);
        } else {
            for (std::size_t i = 0; i < run.count; ++i) {
                const float first = metric == Euclidean ? std::sqrt(run.first[i]) : run.first[i];
                const float second = metric == Euclidean ? std::sqrt(run.second[i]) : run.second[i];
                out[i] = result_ == F1 ? first : second - first;
            }
        }
    }

    int width_;
    int height_;
    int result_;
    int metric_;
    int columns_;
    int rows_;
    Points points_;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return std::make_unique<CellRows>(run);
}

const NodeKernel kernel{prepare};

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
         choice("metric", {"euclidean", "manhattan", "chebyshev"}, 0, "how distances are measured"),
         number("repeats", ValueType::Integer2, 8, 1, 256, "cells across and down"),
         number("jitter", ValueType::Float, 1, 0, 1,
                "0: points in the middle of their cells; 1: anywhere in them"),
         seedParameter()},
        ResultChannels::Gray,
        true,
        120,
        &kernel};
}

} // namespace embedded
