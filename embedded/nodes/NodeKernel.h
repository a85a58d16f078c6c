// What the engine runs of a node kind. A kernel is prepared once for a run of a node, then computes the
// result by rows: in bands of any size, in any order, on any threads at once, always with the same bytes.
#pragma once

#include "embedded/nodes/Image.h"
#include "embedded/nodes/Value.h"

#include <memory>
#include <utility>
#include <vector>

namespace embedded {

// A node with everything settled. Sides are powers of two, as are the sources' (they have the result's size).
struct NodeRun {
    int width = 1;
    int height = 1;
    int channels = 1;
    // One for each port, null where nothing is connected: gray ports have 1 channel, colour ports 4, ports
    // marked Any the result's number.
    std::vector<const Image*> sources;
    std::vector<Value> parameters; // in the kind's order, of its types, within its ranges
    const Image* image = nullptr; // what the image parameter refers to, in the result's shape; null: no image

    int shorterSide() const { return width < height ? width : height; }
    float number(std::size_t parameter, std::size_t component = 0) const {
        return parameters[parameter].floats[component];
    }
    int integer(std::size_t parameter, std::size_t component = 0) const {
        return parameters[parameter].integers[component];
    }
};

// One prepared run of a node; the NodeRun outlives it. Passes follow each other; within a pass the bands are
// independent.
class RowKernel {
public:
    explicit RowKernel(int height)
        : height_(height) {}
    virtual ~RowKernel() = default;
    RowKernel(const RowKernel&) = delete;
    RowKernel& operator=(const RowKernel&) = delete;

    virtual int passCount() const { return 1; }
    // The rows that a pass is made of; those of the last pass are the result's.
    virtual int rowCount(int) const { return height_; }
    // Rows [begin, end) of a pass.
    virtual void computeRows(int pass, int begin, int end, Image& result) = 0;

private:
    int height_;
};

struct NodeKernel {
    std::unique_ptr<RowKernel> (*prepare)(const NodeRun& run);
};

// A kernel of one pass from a function (int y, float* row) that computes one row.
template <typename Function>
std::unique_ptr<RowKernel> makeRowKernel(const NodeRun& run, Function function) {
    class Rows : public RowKernel {
    public:
        Rows(int height, Function rowFunction)
            : RowKernel(height)
            , function_(std::move(rowFunction)) {}
        void computeRows(int, int begin, int end, Image& result) override {
            for (int y = begin; y < end; ++y) function_(y, result.row(y));
        }

    private:
        const Function function_;
    };
    return std::make_unique<Rows>(run.height, std::move(function));
}

} // namespace embedded
