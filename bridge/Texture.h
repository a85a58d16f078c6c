/// @file
/// A material's texture.
#pragma once

#include "material/Substance.h"

namespace kvSubstance {

/// Renders whatever is out of date in the material's graphs and returns the texture of the output whose
/// identifier is "Output" as an image: 8 bits per channel, red, green, blue and alpha interleaved, the first
/// row at the top, full-size level only, values as the engine made them. The image is also kept as the
/// material's cached texture.
///
/// When nothing is out of date, when there is no output of that name or its pixels are not 8-bit RGBA, and
/// when rendering fails, the cached texture is returned, which is null for a material that never had one.
/// Null also for a null material, and for one that has no graphs to render. A child process that was forked
/// after the first texture renders nothing.
///
/// Edited inputs must have been synchronised before. The call blocks until the engine, on a thread of its
/// own, is done. Different threads may ask for textures of different materials; they wait for each other's.
/// Memory or a thread that is not to be had throws (std::bad_alloc, boost::thread_resource_error).
KVSUBSTANCE_API kv::TempReference<ilSIDImage> getTextureFromSubstance(Substance* material);

} // namespace kvSubstance
