#include "material/SubstanceOutput.h"

namespace kvSubstance {

SubstanceOutput::SubstanceOutput(Substance* owningMaterial, unsigned int outputUid,
                                 const kvString::CString& outputIdentifier, Format outputFormat, int width,
                                 int height, int mipMaps, bool isSizeDynamic)
    : SubstanceEntity(outputUid, outputIdentifier)
    , owner(owningMaterial)
    , format(outputFormat)
    , xSize(width)
    , ySize(height)
    , numMipMaps(mipMaps)
    , dynamicSize(isSizeDynamic) {}

SubstanceOutput::~SubstanceOutput() = default;

} // namespace kvSubstance
