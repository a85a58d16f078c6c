// Images that a host hands to image inputs.
#pragma once

#include "embedded/nodes/Image.h"
#include "platform/engine.h"

#include <memory>
#include <optional>

namespace embedded {

// The full-size level as a linear image, colour for the RGBA formats. A null record or null pixels are the
// null image; nothing for a record that cannot be read: an unknown format or channel order, a side of zero or
// above 16384.
std::optional<std::shared_ptr<const Image>> decodeTexture(const SubstanceTextureInput* texture);

} // namespace embedded
