#include "embedded/nodes/Adjust.h"
#include "embedded/nodes/AmbientOcclusion.h"
#include "embedded/nodes/Blend.h"
#include "embedded/nodes/Blur.h"
#include "embedded/nodes/Bricks.h"
#include "embedded/nodes/Cellular.h"
#include "embedded/nodes/ChannelMerge.h"
#include "embedded/nodes/ChannelSplit.h"
#include "embedded/nodes/Curvature.h"
#include "embedded/nodes/Curve.h"
#include "embedded/nodes/DirectionalBlur.h"
#include "embedded/nodes/DirectionalWarp.h"
#include "embedded/nodes/Distance.h"
#include "embedded/nodes/FlowSmear.h"
#include "embedded/nodes/FractalNoise.h"
#include "embedded/nodes/GradientMap.h"
#include "embedded/nodes/GrayFromColour.h"
#include "embedded/nodes/HueSaturationLightness.h"
#include "embedded/nodes/ImageInput.h"
#include "embedded/nodes/Levels.h"
#include "embedded/nodes/NodeKind.h"
#include "embedded/nodes/Normal.h"
#include "embedded/nodes/NormalCombine.h"
#include "embedded/nodes/Scatter.h"
#include "embedded/nodes/Shape.h"
#include "embedded/nodes/Transform.h"
#include "embedded/nodes/Uniform.h"
#include "embedded/nodes/Warp.h"
#include "embedded/nodes/Wave.h"
#include "embedded/nodes/Weave.h"
#include "embedded/nodes/WhiteNoise.h"

#include <algorithm>

namespace embedded {

const std::vector<NodeKind>& nodeKinds() {
    // Never destroyed: a render may be in progress while the static objects of an ending process die.
    static const auto& kinds = *new const std::vector<NodeKind>{
        uniformKind(),
        imageInputKind(),
        fractalNoiseKind(),
        cellularKind(),
        bricksKind(),
        blendKind(),
        levelsKind(),
        gradientMapKind(),
        blurKind(),
        warpKind(),
        transformKind(),
        normalKind(),
        channelSplitKind(),
        channelMergeKind(),
        waveKind(),
        shapeKind(),
        whiteNoiseKind(),
        weaveKind(),
        hueSaturationLightnessKind(),
        curveKind(),
        directionalBlurKind(),
        distanceKind(),
        scatterKind(),
        flowSmearKind(),
        normalCombineKind(),
        curvatureKind(),
        ambientOcclusionKind(),
        adjustKind(),
        grayFromColourKind(),
        directionalWarpKind(),
    };
    return kinds;
}

const NodeKind* findNodeKind(std::uint32_t code) {
    const auto& kinds = nodeKinds();
    const auto found =
        std::find_if(kinds.begin(), kinds.end(), [&](const NodeKind& kind) { return kind.code == code; });
    return found == kinds.end() ? nullptr : &*found;
}

const NodeKind* findNodeKind(std::string_view name) {
    const auto& kinds = nodeKinds();
    const auto found =
        std::find_if(kinds.begin(), kinds.end(), [&](const NodeKind& kind) { return kind.name == name; });
    return found == kinds.end() ? nullptr : &*found;
}

} // namespace embedded
