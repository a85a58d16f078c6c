#include "framework/description/PackageDesc.h"

#include "framework/description/DescriptionParser.h"
#include "framework/description/PackageContent.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/Renderer.h"
#include "framework/render/RendererAccess.h"

#include <boost/make_shared.hpp>

namespace SubstanceAir {

namespace {

void applyOptions(const OutputFormatOptions& options, OutputDesc& output) {
    output.format = acceptableFormat(output.format, options.formatClassMask);
    if (options.mipmapMode != 0) output.mipmaps = options.mipmapMode == 2 ? 1 : 0;
}

} // namespace

PackageDesc::PackageDesc() = default;

PackageDesc::PackageDesc(const void* data, size_t size, const OutputFormatOptions* options) {
    PackageContent content = splitPackage(data, size);
    assembly = std::move(content.assembly);
    if (!content.description ||
        !parsePackageDescription(*content.description, *this, assemblyUid, graphDescs)) {
        graphDescs.clear();
        return;
    }
    if (options)
        for (GraphDesc& graph : graphDescs)
            for (OutputDesc& output : graph.outputs) applyOptions(*options, output);

    const RendererAccess renderer;
    if (!renderer) return;
    renderer->registerPackage(*this);
    isRegistered = true;
}

PackageDesc::~PackageDesc() {
    close();
}

void PackageDesc::close() {
    // Whether the key goes is a matter of the graphs, not of the registration. Kept: a uid that was given out
    // without any graph stays taken, and no stack of a later package falls on it.
    if (!graphDescs.empty()) {
        const RendererAccess renderer;
        if (renderer) renderer->unregisterPackage(assemblyUid);
    } else if (isRegistered) {
        const RendererAccess renderer;
        if (renderer) renderer->forgetPackage(*this);
    }
    isRegistered = false;
    graphDescs.clear();
}

bool PackageDesc::pushToLinker(SubstanceLinkerHandle* handle) const {
    if (substanceLinkerHandlePushAssemblyMemory(handle, assembly.data(), assembly.size()) != 0) return false;
    for (const GraphDesc& graph : graphDescs)
        for (const OutputDesc& output : graph.outputs)
            substanceLinkerHandleSetOutputFormat(handle, output.uid, output.format, output.mipmaps);
    return true;
}

void instantiateGraphs(std::vector<boost::shared_ptr<GraphInstance>>& instances, const PackageDesc& package) {
    for (const GraphDesc& graph : package.graphs())
        instances.push_back(boost::make_shared<GraphInstance>(graph));
}

} // namespace SubstanceAir
