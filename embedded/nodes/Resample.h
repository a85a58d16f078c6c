// Brings an image to the shape that a reader needs.
#pragma once

#include "embedded/nodes/Image.h"

namespace embedded {

// Another size, for images that wrap around: an axis that shrinks takes the mean of the area that a new pixel
// covers (shrinking by whole factors is a box filter), one that grows is interpolated linearly.
Image resampled(const Image& image, int width, int height);

// Another number of channels: colour to gray by luminance (Rec. 709 weights), gray to colour by repetition
// with alpha 1.
Image withChannels(const Image& image, int channels);

} // namespace embedded
