#include "bridge/Texture.h"

#include "bridge/RenderQueue.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/PackageStackDesc.h"

#include <memory>

namespace kvSubstance {

namespace {

using Image = kv::TempReference<ilSIDImage>;
using GraphInstances = std::vector<boost::shared_ptr<SubstanceAir::GraphInstance>>;

constexpr const char* TextureOutput = "Output";

// Null unless the pixels are 8-bit RGBA. They are copied as they stand, whatever their channel order and
// colour encoding: on purpose, hosts take the engine's bytes.
Image toImage(const SubstanceTexture& texture) {
    if (texture.pixelFormat & ~(SubstanceFormatRgba8 | SubstanceFormatSrgb)) return {};
    const int width = texture.level0Width;
    const int height = texture.level0Height;
    const Image image(new ilSPMemoryImg(ilSize{width, height, 1, 4}, ilUChar, ilInterleaved, true));
    image->setTile(0, 0, width, height, texture.buffer);
    return image;
}

// Takes and frees one result of every output up to the one that gives the image; those behind it keep theirs.
Image harvest(const GraphInstances& graphs) {
    for (const auto& graph : graphs) {
        for (const auto& output : graph->outputs) {
            const std::unique_ptr<SubstanceAir::RenderResult> result = output->grabResult();
            if (!result || output->desc.identifier != TextureOutput) continue;
            try {
                if (Image image = toImage(result->texture)) return image;
            } catch (...) {
                output->dirty = true; // the result is lost with the image: the next call renders it again
                throw;
            }
        }
    }
    return {};
}

} // namespace

Image getTextureFromSubstance(Substance* material) {
    const SubstanceAir::PackageStackDesc* const stack = material ? material->getPackageStackDesc() : nullptr;
    if (!stack || stack->graphs().empty()) return {};
    const GraphInstances graphs = material->getGraphInstances();
    RenderQueue queue;
    for (const auto& graph : graphs) queue.push(*graph);
    queue.run();
    const Image image = harvest(graphs);
    if (!image) return material->getCachedTexture();
    material->setCachedTexture(image);
    return image;
}

} // namespace kvSubstance
