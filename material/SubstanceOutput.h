/// @file
/// A texture that a material produces, as its description announces it.
#pragma once

#include "material/SubstanceEntity.h"
#include "material/Types.h"

namespace kvSubstance {

class Substance;

/// Created by Substance::newOutput. Nothing but its modified flag ever changes. An output holds no pixels:
/// textures come from getTextureFromSubstance, whose materials have no outputs of this kind.
class KVSUBSTANCE_API SubstanceOutput : public SubstanceEntity {
public:
    /// The owner is neither held nor followed. Sizes are in pixels; see the getters.
    SubstanceOutput(Substance* owner, unsigned int uid, const kvString::CString& identifier, Format format,
                    int xSize, int ySize, int numMipMaps, bool dynamicSize);
    ~SubstanceOutput() override;

    Format getFormat() const { return format; }      ///< FormatInvalid for a code that is not known.
    int getXSize() const { return xSize; }           ///< Width of the full-size level, in pixels.
    int getYSize() const { return ySize; }           ///< Height of the full-size level, in pixels.
    int getNumMipMaps() const { return numMipMaps; } ///< Levels, as the description counts them.
    bool getDynamicSize() const {
        return dynamicSize;
    } ///< Whether the size follows the material's resolution.

private:
    [[maybe_unused]] Substance* owner; // may be gone
    Format format;
    int xSize;
    int ySize;
    int numMipMaps;
    bool dynamicSize;
};

} // namespace kvSubstance
