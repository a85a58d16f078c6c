#include "framework/description/ChannelUsage.h"

namespace SubstanceAir {

const char* const* channelUsageNames() {
    static const char* const names[] = {
        "diffuse",          "opacity",      "emissive",    "ambient",
        "ambientOcclusion", "mask",         "normal",      "bump",
        "height",           "displacement", "specular",    "specularLevel",
        "specularColor",    "glossiness",   "roughness",   "anisotropyLevel",
        "anisotropyAngle",  "transmissive", "reflection",  "refraction",
        "environment",      "IOR",          "scattering0", "scattering1",
        "scattering2",      "scattering3",
    };
    static_assert(sizeof names / sizeof *names == ChannelUsageCount, "one name for every usage");
    return names;
}

} // namespace SubstanceAir
