// What the engine runs of a node kind. A kernel is prepared once for a run of a node, then computes the
// result in pieces of any size, in any order, on any threads at once, always with the same bytes.
#pragma once

#include "embedded/nodes/Image.h"
#include "embedded/nodes/ImageMemory.h"
#include "embedded/nodes/Value.h"

#include <memory>
#include <utility>
#include <vector>

namespace embedded {

// A node with everything settled. Sides are powers of two; sources have the result's size. A parameter that
// refers to an image input makes one more source, behind those of the ports.
struct NodeRun {
    int width = 1;
    int height = 1;
    int channels = 1; // 1, 3 or 4
    // Of what is connected to each port, before it takes the port's number of channels; 0: nothing is.
    std::vector<int> sourceChannels;
    // What ports with a border read: gray ports have 1 channel, colour ports 4, ports marked Any the
    // result's number. Empty for all others.
    std::vector<ImageView> images;
    std::vector<Value> parameters;       // in the kind's order, of its types, within its ranges
    std::shared_ptr<ImageMemory> memory; // for images that a kernel needs besides

    int shorterSide() const { return width < height ? width : height; }
    bool connected(std::size_t port) const { return sourceChannels[port] > 0; }
    float number(std::size_t parameter, std::size_t component = 0) const {
        return parameters[parameter].floats[component];
    }
    int integer(std::size_t parameter, std::size_t component = 0) const {
        return parameters[parameter].integers[component];
    }
};

// Pixels [x, x + count) of a row.
struct Segment {
    int y;
    int x;
    int count;
};

// A segment of a source, as the port reads it: one channel for gray ports and for gray results, else all
// four. The other channels are null; so are all for ports with a border and where nothing is connected.
struct SourceRow {
    const float* channels[4] = {};
};

// What a thread keeps from one segment to the next.
class RowScratch {
public:
    RowScratch() = default;
    virtual ~RowScratch() = default;
    RowScratch(const RowScratch&) = delete;
    RowScratch& operator=(const RowScratch&) = delete;
};

// Computes any segment of the result on its own, from the same segment of the sources and, for ports with a
// border, from their whole images. The NodeRun outlives it.
class RowKernel {
public:
    RowKernel() = default;
    virtual ~RowKernel() = default;
    RowKernel(const RowKernel&) = delete;
    RowKernel& operator=(const RowKernel&) = delete;

    // Null for kernels that need none.
    virtual std::unique_ptr<RowScratch> makeScratch() const { return nullptr; }

    // The result's channels do not overlap the sources'. The scratch is one that this kernel made.
    virtual void compute(const Segment& segment, const SourceRow* sources, RowScratch* scratch,
                         float* const* result) const = 0;
};

// Computes the whole result in passes that follow each other. A pass consists of rows (of whatever it works
// on) that are independent; those of the last pass fill the result. All ports have a border. The NodeRun
// outlives it.
class ImageKernel {
public:
    ImageKernel() = default;
    virtual ~ImageKernel() = default;
    ImageKernel(const ImageKernel&) = delete;
    ImageKernel& operator=(const ImageKernel&) = delete;

    virtual int passCount() const = 0;
    virtual int rowCount(int pass) const = 0;
    // Samples that a row of the pass has about, from which the engine finds how many make a good piece.
    virtual int rowSamples(int pass) const = 0;
    // Rows [begin, end) of a pass.
    virtual void computeRows(int pass, int begin, int end, Image& result) = 0;
};

// A kind has one or the other.
struct NodeKernel {
    std::unique_ptr<RowKernel> (*prepareRows)(const NodeRun& run) = nullptr;
    std::unique_ptr<ImageKernel> (*prepareImage)(const NodeRun& run) = nullptr;
};

// A row kernel without scratch from a function (const Segment&, const SourceRow* sources, float* const*
// result).
template <typename Function>
std::unique_ptr<RowKernel> makeRowKernel(Function function) {
    class Rows : public RowKernel {
    public:
        explicit Rows(Function rowFunction)
            : function_(std::move(rowFunction)) {}
        void compute(const Segment& segment, const SourceRow* sources, RowScratch*,
                     float* const* result) const override {
            function_(segment, sources, result);
        }

    private:
        const Function function_;
    };
    return std::make_unique<Rows>(std::move(function));
}

} // namespace embedded
