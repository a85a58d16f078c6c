// Brings images to the shape that a reader needs.
#pragma once

#include "embedded/nodes/Image.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/rows/ResampleRows.h"
#include "embedded/rows/WeightedRows.h"

#include <memory>
#include <vector>

namespace embedded {

// The old pixels that make each new one along an axis: count[i] of them from first[i] on (wrapping around),
// with weights from weightStart[i] on.
struct AxisTaps {
    AxisTaps(int oldSize, int newSize);

    std::vector<int> first;
    std::vector<int> count;
    std::vector<std::size_t> weightStart;
    std::vector<float> weights;
};

// Another size for images that wrap around, from and to any size: an axis that shrinks takes the mean of the
// area that a new pixel covers (shrinking by whole factors is a box filter), one that grows is interpolated
// linearly. One row of one channel at a time.
class RowResampler {
public:
    RowResampler(int oldWidth, int oldHeight, int newWidth, int newHeight);

    int width() const { return newWidth_; }
    int height() const { return static_cast<int>(down_.count.size()); }

    struct Scratch { // of one thread
        std::vector<const float*> rows;
        std::vector<float> row;
        std::vector<float> halved;
    };

    // Row y of the new plane; the plane has the old size.
    void computeRow(const Plane& plane, int y, Scratch& scratch, float* out) const;

private:
    const float* oldRow(const Plane& plane, int y, Scratch& scratch, float* place) const;
    void shrinkRow(const float* in, float* out) const;

    int oldWidth_;
    int newWidth_;
    int halvings_ = 0; // by how many an axis across shrinks, where that is all
    AxisTaps across_;  // when it shrinks
    AxisTaps down_;
    std::vector<int> left_; // when it grows across: pixels counted from the one before the first
    std::vector<float> t_;
    WeighRows* weighRows_ = weighRows.chosen();
    HalveRow* halveRow_ = halveRow.chosen();
    InterpolateRow* interpolateRow_ = interpolateRow.chosen();
};

// As a kernel of one pass. The source outlives it; the result has the source's number of channels.
std::unique_ptr<ImageKernel> prepareResampling(const ImageView& source, int width, int height);

// At once.
Image resampled(const Image& image, int width, int height);

// Another number of channels: colour to gray by luminance (Rec. 709 weights), gray to colour by repetition,
// opaque colours to an alpha of 1.
Image withChannels(const Image& image, int channels);

} // namespace embedded
