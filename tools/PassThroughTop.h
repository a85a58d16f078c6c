// A top that shows one channel of the bottom as it is, for when there is only one package.
#pragma once

#include "tools/PackageFile.h"

#include <string>

namespace tool {

// The channel is a usage, such as "diffuse" or "normal". Colours come out sRGB-encoded, measures as they are.
PackageFile makePassThroughTop(const std::string& channel);

} // namespace tool
